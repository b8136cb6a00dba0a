#include "visualization/QtWidgets/VXViewWidget.hpp"

#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"
#include "utils/KXVtkModuleUtils.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtWidgets/QGraphicsBlurEffect>
#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

int VXViewWidget::s_NextSplitViewId = 2;

namespace
{
QString hintText(int splitId)
{
  return QStringLiteral("Split View %1").arg(splitId);
}
} // namespace

VXViewWidget::VXViewWidget(QWidget* parent, Qt::WindowFlags flags)
  : VXAbstractViewWidget(parent, flags)
{
  setupForm();
  setupView();
  setupGui();
}

VXViewWidget::VXViewWidget(const VXViewWidget& other)
  : VXAbstractViewWidget(other.parentWidget(), other.windowFlags())
{
  setupForm();
  setupView();
  if (m_VisualizationWidget != nullptr)
    m_VisualizationWidget->copy(other.getVisualizationWidget());
  setupGui();
}

VXViewWidget::~VXViewWidget() = default;

void VXViewWidget::setupForm()
{
  setObjectName(QStringLiteral("VXViewWidget"));
  m_Form.mainLayout = new QVBoxLayout(this);
  m_Form.mainLayout->setContentsMargins(1, 1, 1, 1);
  m_Form.mainLayout->setSpacing(0);

  m_Form.buttonRow = new QWidget(this);
  m_Form.buttonRow->setObjectName(QStringLiteral("buttonRow"));
  m_Form.buttonLayout = new QHBoxLayout(m_Form.buttonRow);
  m_Form.buttonLayout->setContentsMargins(4, 1, 1, 1);
  m_Form.buttonLayout->setSpacing(2);

  m_Form.statusLabel = new QLabel(m_Form.buttonRow);
  m_Form.statusLabel->setObjectName(QStringLiteral("statusLabel"));
  m_Form.statusLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  m_Form.buttonLayout->addWidget(m_Form.statusLabel, 1);

  auto makeButton = [this](const char* name, const QString& toolTip)
  {
    auto* button = new QPushButton(m_Form.buttonRow);
    button->setObjectName(QString::fromLatin1(name));
    button->setFlat(true);
    button->setToolTip(toolTip);
    button->setIconSize(KXStyle::getIconSize());
    button->setFocusPolicy(Qt::NoFocus);
    m_Form.buttonLayout->addWidget(button);
    return button;
  };
  m_Form.splitHorizontalButton =
    makeButton("splitHorizontalButton", QStringLiteral("Split View Horizontally"));
  m_Form.splitVerticalButton =
    makeButton("splitVerticalButton", QStringLiteral("Split View Vertically"));
  m_Form.closeButton = makeButton("closeButton", QString());

  m_Form.mainLayout->addWidget(m_Form.buttonRow);
}

void VXViewWidget::setupView()
{
  if (m_VisualizationWidget == nullptr)
  {
    m_VisualizationWidget = new VXVisualizationWidget(this, 2);
    connect(m_VisualizationWidget, &VXVisualizationWidget::mousePressed, this,
            &VXViewWidget::mousePressed);
    connect(m_VisualizationWidget, &VXVisualizationWidget::requestSplitHorizontally, this,
            &VXViewWidget::splitHorizontally);
    connect(m_VisualizationWidget, &VXVisualizationWidget::requestSplitVertically, this,
            &VXViewWidget::splitVertically);
    connect(m_VisualizationWidget, &VXVisualizationWidget::statusMessage, this,
            &VXViewWidget::updateStatusMessage);
  }
  m_VisualizationWidget->show();
  if (m_Form.mainLayout != nullptr && m_Form.mainLayout->indexOf(m_VisualizationWidget) < 0)
    m_Form.mainLayout->addWidget(m_VisualizationWidget, 1);
  if (VXInteractorStyleCamera* style = m_VisualizationWidget->getInteractorStyle())
    style->setViewWidget(this);
  setupOverlay();
}

void VXViewWidget::setupOverlay()
{
  if (m_MoveChartOverlayHint != nullptr)
    return;
  m_MoveChartOverlayBackground = new QLabel(QString(), this);
  m_MoveChartOverlayBackground->setObjectName(QStringLiteral("m_MoveChartOverlayBackground"));
  m_MoveChartOverlayBackground->setAlignment(Qt::AlignCenter);
  m_MoveChartOverlayBackground->setStyleSheet(QStringLiteral("background-color: rgb(30, 30, 30);"));
  m_MoveChartOverlayBackground->setGeometry(0, 0, width(), height());
  m_OpacityEffect = new QGraphicsOpacityEffect(m_MoveChartOverlayBackground);
  m_OpacityEffect->setOpacity(0.75);
  m_MoveChartOverlayBackground->setGraphicsEffect(m_OpacityEffect);

  m_MoveChartOverlayHint = new QLabel(hintText(m_SplitId), this);
  m_MoveChartOverlayHint->setObjectName(QStringLiteral("m_MoveChartOverlayHint"));
  m_MoveChartOverlayHint->setAlignment(Qt::AlignCenter);
  m_MoveChartOverlayHint->setWordWrap(true);
  m_MoveChartOverlayHint->setStyleSheet(
    QStringLiteral("color: white; font-size: 24pt; font-weight: bold;"));
  m_MoveChartOverlayHint->setGeometry(0, 0, width(), height());

  // the view and the strip blur while the hint is up; radius 0 leaves them sharp
  m_BlurEffect = new QGraphicsBlurEffect(m_VisualizationWidget);
  m_BlurEffect->setBlurRadius(0);
  m_VisualizationWidget->setGraphicsEffect(m_BlurEffect);
  // Not on the row itself as well: Qt can't nest effects (a widget with an
  // effect inside another one makes two painters on one device).
  const QList<QWidget*> formChildren = { m_Form.statusLabel, m_Form.splitHorizontalButton,
                                         m_Form.splitVerticalButton, m_Form.closeButton };
  for (QWidget* child : formChildren)
  {
    auto* blur = new QGraphicsBlurEffect(child);
    blur->setBlurRadius(0);
    child->setGraphicsEffect(blur);
  }

  m_MoveChartOverlayBackground->hide();
  m_MoveChartOverlayHint->hide();
}

void VXViewWidget::setupGui()
{
  connectSlots();
  m_Form.closeButton->setIcon(KXStyle::generateThemeIconFromName(QStringLiteral("Close")));
  m_Form.splitHorizontalButton->setIcon(
    KXStyle::generateThemeIconFromName(QStringLiteral("Split Horizontal")));
  m_Form.splitVerticalButton->setIcon(
    KXStyle::generateThemeIconFromName(QStringLiteral("Split Vertical")));
  updateClosable();
  if (m_VisualizationWidget != nullptr)
    m_VisualizationWidget->render();
}

void VXViewWidget::connectSlots()
{
  connect(m_Form.splitHorizontalButton, &QPushButton::clicked, this,
          &VXViewWidget::splitHorizontally);
  connect(m_Form.splitVerticalButton, &QPushButton::clicked, this, &VXViewWidget::splitVertically);
  connect(m_Form.closeButton, &QPushButton::clicked, this, &VXViewWidget::closeView);
}

VXAbstractViewWidget* VXViewWidget::clone()
{
  auto* view = new VXViewWidget(*this);
  view->setSplitId(s_NextSplitViewId++);
  return view;
}

VXAbstractViewWidget* VXViewWidget::newInstance()
{
  return new VXViewWidget(parentWidget(), windowFlags());
}

void VXViewWidget::setSplitId(int id)
{
  m_SplitId = id;
  if (m_MoveChartOverlayHint != nullptr)
    m_MoveChartOverlayHint->setText(hintText(id));
}

void VXViewWidget::setSplitIdOverlayHintVisibility(bool visible)
{
  if (m_MoveChartOverlayHint == nullptr)
    return;
  m_MoveChartOverlayBackground->setGeometry(0, 0, width(), height());
  m_MoveChartOverlayHint->setGeometry(0, 0, width(), height());
  m_MoveChartOverlayBackground->setVisible(visible);
  m_MoveChartOverlayHint->setVisible(visible);
  if (visible)
  {
    m_MoveChartOverlayBackground->raise();
    m_MoveChartOverlayHint->raise();
  }
  m_BlurEffect->setBlurRadius(visible ? 5 : 0);
}

void VXViewWidget::setLinkingDataViews(bool isLinking)
{
  m_LinkingDataViews = isLinking;
  if (m_LinkIndicator == nullptr && isLinking)
  {
    // made on first use: most views never link
    m_LinkIndicator = new QLabel(m_Form.buttonRow);
    m_LinkIndicator->setObjectName(QStringLiteral("linkIndicator"));
    m_LinkIndicator->setPixmap(KXStyle::generateThemeIconFromName("target").pixmap(16, 16));
    m_LinkIndicator->setToolTip(QStringLiteral("Image slices are linked between the views"));
    m_Form.buttonLayout->insertWidget(0, m_LinkIndicator);
  }
  if (m_LinkIndicator != nullptr)
    m_LinkIndicator->setVisible(isLinking);
}

void VXViewWidget::splitHorizontally()
{
  Q_EMIT requestSplitHorizontally(this);
}

void VXViewWidget::splitVertically()
{
  Q_EMIT requestSplitVertically(this);
}

void VXViewWidget::closeView()
{
  Q_EMIT requestClose(this);
}

void VXViewWidget::saveState(nlohmann::json& output)
{
  VXAbstractViewWidget::saveState(output);
  output[k_SplitViewIndexKey] = m_SplitId;
}

void VXViewWidget::loadState(nlohmann::json input)
{
  VXAbstractViewWidget::loadState(input);
  if (input.is_object() && input.contains(k_SplitViewIndexKey))
    setSplitId(KXVtkModule::utils::StateInt(input.at(k_SplitViewIndexKey)));
}

void VXViewWidget::updateStatusMessage(QString status)
{
  m_Form.statusLabel->setText(status);
  m_Form.statusLabel->setToolTip(
    QStringLiteral("<html><head/><body><p>%1</p></body></html>").arg(status));
}

void VXViewWidget::updateClosable()
{
  m_Form.closeButton->setEnabled(m_Closable);
  m_Form.closeButton->setToolTip(m_Closable ? QStringLiteral("Close this view.")
                                            : QStringLiteral("Cannot close the last view."));
}

void VXViewWidget::resizeEvent(QResizeEvent* event)
{
  VXAbstractViewWidget::resizeEvent(event);
  if (m_MoveChartOverlayHint != nullptr)
  {
    m_MoveChartOverlayBackground->setGeometry(0, 0, width(), height());
    m_MoveChartOverlayHint->setGeometry(0, 0, width(), height());
  }
}
