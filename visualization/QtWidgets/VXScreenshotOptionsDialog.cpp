#include "visualization/QtWidgets/VXScreenshotOptionsDialog.hpp"

#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QVBoxLayout>

VXScreenshotOptionsDialog::VXScreenshotOptionsDialog(const QColor& defaultColor, QWidget* parent)
  : QDialog(parent)
{
  setWindowTitle(tr("Screenshot Options"));
  auto* layout = new QVBoxLayout(this);
  auto* form = new QFormLayout();
  m_TransparentCheck = new QCheckBox(tr("Transparent Background"), this);
  m_ColorButton = new KXColorButton(defaultColor, this);
  VXUserPrompt::routeColorButton(m_ColorButton, tr("Select Background Color"));
  form->addRow(m_TransparentCheck);
  form->addRow(tr("Background Color:"), m_ColorButton);
  layout->addLayout(form);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  // a transparent image has no background to colour
  connect(m_TransparentCheck, &QCheckBox::toggled, m_ColorButton, &QWidget::setDisabled);
}

VXScreenshotOptionsDialog::~VXScreenshotOptionsDialog() = default;

bool VXScreenshotOptionsDialog::transparentBackground() const
{
  return m_TransparentCheck->isChecked();
}

void VXScreenshotOptionsDialog::setTransparentBackground(bool transparent)
{
  m_TransparentCheck->setChecked(transparent);
}

QColor VXScreenshotOptionsDialog::backgroundColor() const
{
  return m_ColorButton->color();
}

void VXScreenshotOptionsDialog::setBackgroundColor(const QColor& color)
{
  m_ColorButton->setColor(color);
}
