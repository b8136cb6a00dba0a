#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QDialog>

#include <array>

class QDialogButtonBox;
class QLabel;
class QLineEdit;

/**
 * Asks for the range a colour map spans instead of the data's own range: a
 * minimum and a maximum field, the data range for reference, and OK only while
 * both fields hold numbers and the minimum is below the maximum (a message
 * says what is wrong otherwise). The data view keeps one dialog, feeds it the
 * data range as it changes (setRange, setRangeAndValues) and applies range()
 * when the dialog is accepted; cancelling changes nothing.
 */
class KXVTKLIB_EXPORT VXCustomRangeDialog : public QDialog
{
  Q_OBJECT

public:
  explicit VXCustomRangeDialog(QWidget* parent = nullptr);
  ~VXCustomRangeDialog() override;

  /** The data range, which also becomes the values of both fields. */
  void setRange(double min, double max);
  /** The data range shown for reference, and the custom range in the fields. */
  void setRangeAndValues(const std::array<double, 2>& dataRange,
                         const std::array<double, 2>& values);
  /** The range in the fields when they are valid, else the last valid one. */
  std::array<double, 2> range() const { return m_Range; }
  std::array<double, 2> dataRange() const { return m_DataRange; }
  /** Why the fields are refused; empty while they are valid. */
  QString problem() const;

  QLineEdit* minimumEdit() const { return m_MinimumEdit; }
  QLineEdit* maximumEdit() const { return m_MaximumEdit; }
  QDialogButtonBox* buttonBox() const { return m_Buttons; }

Q_SIGNALS:
  /** The dialog was accepted with a valid range. */
  void rangeAccepted(double min, double max);

public Q_SLOTS:
  void accept() override;

private:
  void setValues(const std::array<double, 2>& values);
  void validate();

  std::array<double, 2> m_DataRange = { 0.0, 1.0 };
  std::array<double, 2> m_Range = { 0.0, 1.0 };
  QLineEdit* m_MinimumEdit = nullptr;
  QLineEdit* m_MaximumEdit = nullptr;
  QLabel* m_DataRangeLabel = nullptr;
  QLabel* m_MessageLabel = nullptr;
  QDialogButtonBox* m_Buttons = nullptr;
};
