#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <kxcore/ColorPreset.hpp>

#include <QtGui/QColor>
#include <QtGui/QPixmap>
#include <QtWidgets/QDialog>

#include <memory>
#include <optional>
#include <vector>

class KXColorButton;
class QListWidget;

/**
 * Lets the user pick a colour map: one row per preset with its name and a
 * preview strip, an "Apply" button, "Restore Default" and the NaN colour.
 * The dialog does not colour anything itself: data views and data sources
 * listen to its signals. It lists the built-in presets (KXColorPresets) unless
 * given others, and can be limited to continuous or indexed maps.
 */
class KXCOMPONENTS_EXPORT ColorPresetsDialog : public QDialog
{
  Q_OBJECT

public:
  /** Which presets are listed. */
  enum class Filter
  {
    All,
    Continuous,
    Indexed
  };

  explicit ColorPresetsDialog(QWidget* parent = nullptr);
  ~ColorPresetsDialog() override;

  /** Replaces the offered presets (the built-in ones by default). */
  void setPresets(std::vector<kx::core::ColorTableUtilities::ColorPreset> presets);
  /** All offered presets, whatever the filter. */
  const std::vector<kx::core::ColorTableUtilities::ColorPreset>& presets() const;

  void setFilter(Filter filter);
  Filter filter() const;
  /** Names of the presets listed under the current filter, in order. */
  QStringList listedPresetNames() const;

  /** Selects the listed preset of that name; false when it is not listed. */
  bool selectPreset(const QString& name);
  /** The preset of the selected row, if any. */
  std::optional<kx::core::ColorTableUtilities::ColorPreset> selectedPreset() const;

  QColor nanColor() const;
  /** The button through which the user edits the NaN colour. */
  KXColorButton* nanColorButton() const;

  /**
   * A strip showing the preset: continuous maps interpolated between their
   * points in RGB, indexed maps as equal blocks.
   */
  static QPixmap PreviewPixmap(const kx::core::ColorTableUtilities::ColorPreset& preset,
                               const QSize& size);

public Q_SLOTS:
  /** Shows the NaN colour; emits nothing (nanColorChanged is for the user's edits). */
  void setNanColor(const QColor& color);
  /** Emits presetSelected and applyPreset for the selected row; nothing without a selection. */
  void applySelectedPreset();
  /** Emits restoreDefaultPreset. */
  void requestDefaultPreset();

Q_SIGNALS:
  /** The user applied a preset. */
  void presetSelected(kx::core::ColorTableUtilities::ColorPreset preset);
  /** The same, with the preview of the applied preset, for callers that show it. */
  void applyPreset(kx::core::ColorTableUtilities::ColorPreset preset, QPixmap preview);
  /** The user asked to go back to the default preset. */
  void restoreDefaultPreset();
  /** The user changed the NaN colour. */
  void nanColorChanged(QColor color);

private:
  void rebuildList();
  bool accepts(const kx::core::ColorTableUtilities::ColorPreset& preset) const;

  std::vector<kx::core::ColorTableUtilities::ColorPreset> m_Presets;
  Filter m_Filter = Filter::All;
  QListWidget* m_List = nullptr;
  KXColorButton* m_NanColorButton = nullptr;
};
