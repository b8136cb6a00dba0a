#include "visualization/QtWidgets/VXVisualizationToolbarWidget.hpp"

#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtCore/QHash>
#include <QtCore/QSignalBlocker>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace
{
/** The theme icon of each button, by the button's name. */
QString IconNameOf(const QString& button)
{
  static const QHash<QString, QString> s_Names = {
    { QStringLiteral("+X"), QStringLiteral("ViewPlusX") },
    { QStringLiteral("-X"), QStringLiteral("ViewMinusX") },
    { QStringLiteral("+Y"), QStringLiteral("ViewPlusY") },
    { QStringLiteral("-Y"), QStringLiteral("ViewMinusY") },
    { QStringLiteral("+Z"), QStringLiteral("ViewPlusZ") },
    { QStringLiteral("-Z"), QStringLiteral("ViewMinusZ") },
    { QStringLiteral("Img"), QStringLiteral("ImageView") },
    { QStringLiteral("CW"), QStringLiteral("RotateClockwise") },
    { QStringLiteral("CCW"), QStringLiteral("RotateCounterClockwise") },
    { QStringLiteral("Reset"), QStringLiteral("ResetCamera") },
    { QStringLiteral("CoR"), QStringLiteral("CenterOfRotation") },
    { QStringLiteral("Pts"), QStringLiteral("HoverPoints") },
    { QStringLiteral("Cells"), QStringLiteral("HoverCells") },
  };
  return s_Names.value(button);
}
} // namespace

VXVisualizationToolbarWidget::VXVisualizationToolbarWidget(VXVisualizationWidget* view)
  : QWidget(view)
  , m_View(view)
{
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->setSpacing(1);
  setAttribute(Qt::WA_NoMousePropagation);

  connect(addButton(QStringLiteral("+X"), tr("Look along +X")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camXPlus);
  connect(addButton(QStringLiteral("-X"), tr("Look along -X")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camXMinus);
  connect(addButton(QStringLiteral("+Y"), tr("Look along +Y")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camYPlus);
  connect(addButton(QStringLiteral("-Y"), tr("Look along -Y")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camYMinus);
  connect(addButton(QStringLiteral("+Z"), tr("Look along +Z")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camZPlus);
  connect(addButton(QStringLiteral("-Z"), tr("Look along -Z")), &QToolButton::clicked, view,
          &VXVisualizationWidget::camZMinus);
  connect(addButton(QStringLiteral("Img"), tr("Image view: look along +Z with row 0 at the top")),
          &QToolButton::clicked, view, &VXVisualizationWidget::camImageView);
  connect(addButton(QStringLiteral("CW"), tr("Rotate the view clockwise")), &QToolButton::clicked,
          view, &VXVisualizationWidget::rotateCamClockwise);
  connect(addButton(QStringLiteral("CCW"), tr("Rotate the view counterclockwise")),
          &QToolButton::clicked, view, &VXVisualizationWidget::rotateCamCounterClockwise);
  connect(addButton(QStringLiteral("Reset"), tr("Reset the camera to show everything")),
          &QToolButton::clicked, view, [view]() { view->resetCamera(); });

  m_CenterOfRotationButton =
    addButton(QStringLiteral("CoR"), tr("Click on the data to set the center of rotation"), true);
  connect(m_CenterOfRotationButton, &QToolButton::toggled, view,
          [view](bool checked) { view->toggleCenterOfRotationPicking(checked); });
  m_HoverPointsButton =
    addButton(QStringLiteral("Pts"), tr("Show the values of the point under the cursor"), true);
  connect(m_HoverPointsButton, &QToolButton::toggled, view,
          [view](bool checked) { view->toggleHoverPoints(checked); });
  m_HoverCellsButton =
    addButton(QStringLiteral("Cells"), tr("Show the values of the cell under the cursor"), true);
  connect(m_HoverCellsButton, &QToolButton::toggled, view,
          [view](bool checked) { view->toggleHoverCells(checked); });
  adjustSize();
}

VXVisualizationToolbarWidget::~VXVisualizationToolbarWidget() = default;

QToolButton* VXVisualizationToolbarWidget::addButton(const QString& text, const QString& toolTip,
                                                     bool checkable)
{
  auto* button = new QToolButton(this);
  button->setText(text);
  button->setToolTip(toolTip);
  // the icon stands for the text; the text stays for the accessibility name
  button->setIcon(KXStyle::generateThemeIconFromName(IconNameOf(text)));
  button->setIconSize(QSize(18, 18));
  button->setToolButtonStyle(Qt::ToolButtonIconOnly);
  button->setCheckable(checkable);
  button->setAutoRaise(true);
  button->setObjectName(text);
  layout()->addWidget(button);
  return button;
}

QToolButton* VXVisualizationToolbarWidget::button(const QString& text) const
{
  return findChild<QToolButton*>(text, Qt::FindDirectChildrenOnly);
}

void VXVisualizationToolbarWidget::releaseCenterOfRotationButton()
{
  // through the toggled signal, so the view leaves its pick mode with the button
  m_CenterOfRotationButton->setChecked(false);
}

void VXVisualizationToolbarWidget::syncHoverButtons()
{
  // the view may change modes on its own (the two hover modes exclude each other, the centre of
  // rotation pick turns cell hover on and off): show its state without toggling it again
  const QSignalBlocker pointsBlocker(m_HoverPointsButton);
  const QSignalBlocker cellsBlocker(m_HoverCellsButton);
  m_HoverPointsButton->setChecked(m_View->hoverPointsModeOn());
  m_HoverCellsButton->setChecked(m_View->hoverCellsModeOn());
}

void VXVisualizationToolbarWidget::enableDisableHoverFeatures(int allowHover)
{
  const bool allowed = allowHover != 0;
  if (!allowed)
  {
    m_HoverPointsButton->setChecked(false);
    m_HoverCellsButton->setChecked(false);
  }
  m_HoverPointsButton->setEnabled(allowed);
  m_HoverCellsButton->setEnabled(allowed);
}
