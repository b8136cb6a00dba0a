#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtWidgets/QDialog>

#include <array>

class QCheckBox;
class QLineEdit;
class QSlider;
class QDialogButtonBox;
class KXColorButton;

/** The settings of a view's axes grid, as the controller caches them and the dialog edits them. */
struct KXVTKLIB_EXPORT VXGridAxesConfig
{
  /** Label spacing per axis; 0 lets the actor choose its labels. */
  std::array<double, 3> spacing = { 0.0, 0.0, 0.0 };
  bool showGrid = false;
  QColor color = Qt::white;
  double opacity = 1.0;
  bool showLabels = true;
  std::array<QString, 3> titles;

  bool operator==(const VXGridAxesConfig& other) const = default;
};

/**
 * The non-modal "Grid Axes Options" dialog of a view. It edits a copy of the
 * view's axes grid settings: Apply copies the controls into its fields and
 * emits applyRequested, which the view's VXViewActionsController answers by
 * taking the fields over; Reset puts the controls back to the defaults; Close
 * just closes. The opacity slider (0 to 100) and its text field mirror each
 * other.
 */
class KXVTKLIB_EXPORT VXGridAxesWidget : public QDialog
{
  Q_OBJECT

public:
  explicit VXGridAxesWidget(QWidget* parent = nullptr);
  ~VXGridAxesWidget() override;

  /** Puts @p config into the fields and the controls. */
  void loadConfig(const VXGridAxesConfig& config);
  /** The fields as the last Apply (or loadConfig) left them. */
  VXGridAxesConfig config() const { return m_Config; }

  QLineEdit* spacingEdit(int axis) const { return m_SpacingEdits.at(static_cast<size_t>(axis)); }
  QLineEdit* titleEdit(int axis) const { return m_TitleEdits.at(static_cast<size_t>(axis)); }
  QCheckBox* showGridCheckBox() const { return m_ShowGridCheck; }
  QCheckBox* showLabelsCheckBox() const { return m_ShowLabelsCheck; }
  QSlider* opacitySlider() const { return m_OpacitySlider; }
  QLineEdit* opacityEdit() const { return m_OpacityEdit; }
  KXColorButton* colorButton() const { return m_ColorButton; }
  QDialogButtonBox* buttonBox() const { return m_ButtonBox; }

public Q_SLOTS:
  /** Reads the controls into the fields (opacity clamped to [0, 1]) and emits applyRequested. */
  void apply();
  /** Restores every field and control to the defaults; the spacing edits show "0". */
  void resetToDefaults();

Q_SIGNALS:
  /** The user pressed Apply: config() holds the values to use. */
  void applyRequested();

private:
  void readControls();
  void writeControls();
  void onSliderChanged(int value);
  void onOpacityEditFinished();

  VXGridAxesConfig m_Config;
  std::array<QLineEdit*, 3> m_SpacingEdits = {};
  std::array<QLineEdit*, 3> m_TitleEdits = {};
  QCheckBox* m_ShowGridCheck = nullptr;
  QCheckBox* m_ShowLabelsCheck = nullptr;
  QSlider* m_OpacitySlider = nullptr;
  QLineEdit* m_OpacityEdit = nullptr;
  KXColorButton* m_ColorButton = nullptr;
  QDialogButtonBox* m_ButtonBox = nullptr;
};
