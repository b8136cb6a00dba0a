#include "visualization/QtWidgets/VXCustomRangeDialog.hpp"

#include <QtGui/QDoubleValidator>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <cmath>

namespace
{
QString FormatValue(double value)
{
  return QLocale().toString(value, 'g', 12);
}

/** The number in the field, if the field holds one. */
bool ParseValue(const QLineEdit* edit, double& value)
{
  if (!edit->hasAcceptableInput())
    return false;
  bool ok = false;
  value = QLocale().toDouble(edit->text().trimmed(), &ok);
  return ok && std::isfinite(value);
}
} // namespace

VXCustomRangeDialog::VXCustomRangeDialog(QWidget* parent)
  : QDialog(parent)
{
  setWindowTitle("Custom Range");
  setObjectName("VXCustomRangeDialog");
  auto* layout = new QVBoxLayout(this);
  m_DataRangeLabel = new QLabel(this);
  m_DataRangeLabel->setObjectName("dataRangeLabel");
  layout->addWidget(m_DataRangeLabel);

  auto* form = new QFormLayout();
  m_MinimumEdit = new QLineEdit(this);
  m_MinimumEdit->setObjectName("minimumEdit");
  m_MaximumEdit = new QLineEdit(this);
  m_MaximumEdit->setObjectName("maximumEdit");
  for (QLineEdit* edit : { m_MinimumEdit, m_MaximumEdit })
  {
    auto* validator = new QDoubleValidator(edit);
    validator->setNotation(QDoubleValidator::ScientificNotation);
    edit->setValidator(validator);
    connect(edit, &QLineEdit::textChanged, this, &VXCustomRangeDialog::validate);
  }
  form->addRow("Minimum:", m_MinimumEdit);
  form->addRow("Maximum:", m_MaximumEdit);
  layout->addLayout(form);

  m_MessageLabel = new QLabel(this);
  m_MessageLabel->setObjectName("messageLabel");
  m_MessageLabel->setStyleSheet("color: #c0392b;");
  m_MessageLabel->setWordWrap(true);
  layout->addWidget(m_MessageLabel);

  m_Buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  connect(m_Buttons, &QDialogButtonBox::accepted, this, &VXCustomRangeDialog::accept);
  connect(m_Buttons, &QDialogButtonBox::rejected, this, &VXCustomRangeDialog::reject);
  layout->addWidget(m_Buttons);
  setRange(0.0, 1.0);
}

VXCustomRangeDialog::~VXCustomRangeDialog() = default;

void VXCustomRangeDialog::setRange(double min, double max)
{
  setRangeAndValues({ min, max }, { min, max });
}

void VXCustomRangeDialog::setRangeAndValues(const std::array<double, 2>& dataRange,
                                            const std::array<double, 2>& values)
{
  m_DataRange = dataRange;
  m_DataRangeLabel->setText(
    QString("Data range: [%1, %2]").arg(FormatValue(dataRange[0]), FormatValue(dataRange[1])));
  setValues(values);
}

void VXCustomRangeDialog::setValues(const std::array<double, 2>& values)
{
  m_MinimumEdit->setText(FormatValue(values[0]));
  m_MaximumEdit->setText(FormatValue(values[1]));
  validate();
}

QString VXCustomRangeDialog::problem() const
{
  double min = 0.0;
  double max = 0.0;
  if (!ParseValue(m_MinimumEdit, min))
    return "The minimum must be a number.";
  if (!ParseValue(m_MaximumEdit, max))
    return "The maximum must be a number.";
  if (!(min < max))
    return "The minimum must be less than the maximum.";
  return QString();
}

void VXCustomRangeDialog::validate()
{
  const QString message = problem();
  m_MessageLabel->setText(message);
  m_MessageLabel->setVisible(!message.isEmpty());
  m_Buttons->button(QDialogButtonBox::Ok)->setEnabled(message.isEmpty());
  if (message.isEmpty())
  {
    ParseValue(m_MinimumEdit, m_Range[0]);
    ParseValue(m_MaximumEdit, m_Range[1]);
  }
}

void VXCustomRangeDialog::accept()
{
  validate();
  if (!problem().isEmpty())
    return;
  QDialog::accept();
  Q_EMIT rangeAccepted(m_Range[0], m_Range[1]);
}
