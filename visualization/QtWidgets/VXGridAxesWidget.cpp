#include "visualization/QtWidgets/VXGridAxesWidget.hpp"

#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>

#include <QtCore/QSignalBlocker>
#include <QtGui/QDoubleValidator>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace
{
const std::array<QString, 3> k_AxisNames = { QStringLiteral("X"), QStringLiteral("Y"),
                                             QStringLiteral("Z") };

QString opacityText(double opacity)
{
  return QString::number(opacity, 'g', 6);
}
} // namespace

VXGridAxesWidget::VXGridAxesWidget(QWidget* parent)
  : QDialog(parent, Qt::Dialog | Qt::WindowStaysOnTopHint)
{
  setWindowTitle(QStringLiteral("Grid Axes Options"));
  setModal(false);

  auto* layout = new QVBoxLayout(this);
  auto* grid = new QGridLayout();
  layout->addLayout(grid);
  int row = 0;

  grid->addWidget(new QLabel(QStringLiteral("Spacing:"), this), row, 0);
  for (int axis = 0; axis < 3; ++axis)
  {
    auto* edit = new QLineEdit(QStringLiteral("0"), this);
    edit->setValidator(new QDoubleValidator(edit));
    edit->setToolTip(
      QStringLiteral("Tick spacing along the %1 axis. Set to 0 to use automatic spacing.")
        .arg(k_AxisNames[axis]));
    grid->addWidget(edit, row, axis + 1);
    m_SpacingEdits[static_cast<size_t>(axis)] = edit;
  }
  ++row;

  grid->addWidget(new QLabel(QStringLiteral("Axis Titles:"), this), row, 0);
  for (int axis = 0; axis < 3; ++axis)
  {
    auto* edit = new QLineEdit(this);
    edit->setToolTip(
      QStringLiteral("Title text shown at the end of the %1 axis. Leave empty to hide the title.")
        .arg(k_AxisNames[axis]));
    grid->addWidget(edit, row, axis + 1);
    m_TitleEdits[static_cast<size_t>(axis)] = edit;
  }
  ++row;

  m_ShowGridCheck = new QCheckBox(QStringLiteral("Show Grid"), this);
  m_ShowGridCheck->setToolTip(QStringLiteral(
    "Draw interior grid lines at tick positions in addition to the bounding box edges."));
  grid->addWidget(m_ShowGridCheck, row++, 0, 1, 4);

  m_ShowLabelsCheck = new QCheckBox(QStringLiteral("Show Axis Labels"), this);
  m_ShowLabelsCheck->setChecked(true);
  m_ShowLabelsCheck->setToolTip(
    QStringLiteral("Show tick marks, tick-value labels, and axis titles. Uncheck to "
                   "render plain grid lines and bounding edges only."));
  grid->addWidget(m_ShowLabelsCheck, row++, 0, 1, 4);

  grid->addWidget(new QLabel(QStringLiteral("Grid Opacity:"), this), row, 0);
  m_OpacitySlider = new QSlider(Qt::Horizontal, this);
  m_OpacitySlider->setRange(0, 100);
  m_OpacitySlider->setValue(100);
  m_OpacitySlider->setToolTip(
    QStringLiteral("Adjust grid translucency from 0 (fully transparent) to 1 (fully "
                   "opaque). Applies to lines, edges, ticks, labels, and titles."));
  grid->addWidget(m_OpacitySlider, row, 1, 1, 2);
  m_OpacityEdit = new QLineEdit(QStringLiteral("1.0"), this);
  m_OpacityEdit->setValidator(new QDoubleValidator(0, 1, 4, m_OpacityEdit));
  m_OpacityEdit->setToolTip(
    QStringLiteral("Grid opacity, 0.0 (fully transparent) to 1.0 (fully opaque). Applies "
                   "to lines, edges, ticks, labels, and titles."));
  grid->addWidget(m_OpacityEdit, row++, 3);

  grid->addWidget(new QLabel(QStringLiteral("Grid Color:"), this), row, 0);
  m_ColorButton = new KXColorButton(Qt::white, this);
  VXUserPrompt::routeColorButton(m_ColorButton, QStringLiteral("Select Grid Color"));
  m_ColorButton->setToolTip(QStringLiteral("Color applied to grid lines, bounding edges, tick "
                                           "marks, tick-value labels, and axis titles."));
  grid->addWidget(m_ColorButton, row++, 1);

  auto* note = new QLabel(QStringLiteral("Setting a spacing value of 0 will reset that axis to the "
                                         "default automatic spacing behavior"),
                          this);
  note->setWordWrap(true);
  layout->addWidget(note);

  m_ButtonBox = new QDialogButtonBox(
    QDialogButtonBox::Apply | QDialogButtonBox::Close | QDialogButtonBox::Reset, this);
  m_ButtonBox->button(QDialogButtonBox::Apply)->setDefault(true);
  layout->addWidget(m_ButtonBox);

  connect(m_ButtonBox->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
          &VXGridAxesWidget::apply);
  connect(m_ButtonBox->button(QDialogButtonBox::Reset), &QPushButton::clicked, this,
          &VXGridAxesWidget::resetToDefaults);
  connect(m_ButtonBox, &QDialogButtonBox::accepted, this,
          [this]()
          {
            readControls();
            accept();
          });
  connect(m_ButtonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(m_OpacitySlider, &QSlider::valueChanged, this, &VXGridAxesWidget::onSliderChanged);
  connect(m_OpacityEdit, &QLineEdit::editingFinished, this,
          &VXGridAxesWidget::onOpacityEditFinished);
}

VXGridAxesWidget::~VXGridAxesWidget() = default;

void VXGridAxesWidget::loadConfig(const VXGridAxesConfig& config)
{
  m_Config = config;
  writeControls();
}

void VXGridAxesWidget::apply()
{
  readControls();
  Q_EMIT applyRequested();
}

void VXGridAxesWidget::resetToDefaults()
{
  m_Config = VXGridAxesConfig();
  writeControls();
  for (QLineEdit* edit : m_SpacingEdits)
    edit->setText(QStringLiteral("0"));
}

void VXGridAxesWidget::readControls()
{
  for (size_t axis = 0; axis < 3; ++axis)
  {
    // a text that does not parse means 0, i.e. automatic spacing
    m_Config.spacing[axis] = m_SpacingEdits[axis]->text().toDouble();
    m_Config.titles[axis] = m_TitleEdits[axis]->text();
  }
  m_Config.showGrid = m_ShowGridCheck->isChecked();
  m_Config.showLabels = m_ShowLabelsCheck->isChecked();
  m_Config.color = m_ColorButton->color();
  m_Config.opacity = std::clamp(m_OpacityEdit->text().toDouble(), 0.0, 1.0);
}

void VXGridAxesWidget::writeControls()
{
  for (size_t axis = 0; axis < 3; ++axis)
  {
    m_SpacingEdits[axis]->setText(QString::number(m_Config.spacing[axis], 'g', 6));
    m_TitleEdits[axis]->setText(m_Config.titles[axis]);
  }
  m_ShowGridCheck->setChecked(m_Config.showGrid);
  m_ShowLabelsCheck->setChecked(m_Config.showLabels);
  m_ColorButton->setColor(m_Config.color);
  const QSignalBlocker sliderBlocker(m_OpacitySlider);
  const QSignalBlocker editBlocker(m_OpacityEdit);
  m_OpacitySlider->setValue(static_cast<int>(m_Config.opacity * 100.0));
  m_OpacityEdit->setText(opacityText(m_Config.opacity));
}

void VXGridAxesWidget::onSliderChanged(int value)
{
  const QSignalBlocker blocker(m_OpacityEdit);
  m_OpacityEdit->setText(opacityText(value / 100.0));
}

void VXGridAxesWidget::onOpacityEditFinished()
{
  const double opacity = std::clamp(m_OpacityEdit->text().toDouble(), 0.0, 1.0);
  const QSignalBlocker editBlocker(m_OpacityEdit);
  const QSignalBlocker sliderBlocker(m_OpacitySlider);
  m_OpacityEdit->setText(opacityText(opacity));
  m_OpacitySlider->setValue(static_cast<int>(opacity * 100.0));
}
