#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"

#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/QtWidgets/VXInteractorStyleCamera.hpp"

#include <vtkRenderer.h>

#include <QtWidgets/QStyle>
#include <QtWidgets/QVBoxLayout>

VXAbstractViewWidget::VXAbstractViewWidget(QWidget* parent, Qt::WindowFlags flags)
  : QFrame(parent, flags)
{
}

VXAbstractViewWidget::~VXAbstractViewWidget() = default;

void VXAbstractViewWidget::setActive(bool active)
{
  m_Active = active;
  // re-polish so the style sheet's rule on the Active property applies at once
  style()->unpolish(this);
  style()->polish(this);
  repaint();
}

void VXAbstractViewWidget::setupView()
{
  if (m_VisualizationWidget == nullptr)
  {
    m_VisualizationWidget = new VXVisualizationWidget(this, 2);
    connect(m_VisualizationWidget, &VXVisualizationWidget::mousePressed, this,
            &VXAbstractViewWidget::mousePressed);
    connect(m_VisualizationWidget, &VXVisualizationWidget::statusMessage, this,
            &VXAbstractViewWidget::updateStatusMessage);
  }
  auto* frameLayout = qobject_cast<QVBoxLayout*>(layout());
  if (frameLayout == nullptr && layout() == nullptr)
  {
    frameLayout = new QVBoxLayout(this);
    frameLayout->setContentsMargins(0, 0, 0, 0);
  }
  m_VisualizationWidget->show();
  if (frameLayout != nullptr && frameLayout->indexOf(m_VisualizationWidget) < 0)
    frameLayout->addWidget(m_VisualizationWidget);
  // the style redraws the linked views while the user turns this one
  if (VXInteractorStyleCamera* style = m_VisualizationWidget->getInteractorStyle())
    style->setViewWidget(this);
}

void VXAbstractViewWidget::setSplitId(int) {}

int VXAbstractViewWidget::getSplitId() const
{
  return 1;
}

void VXAbstractViewWidget::setSplitIdOverlayHintVisibility(bool) {}

void VXAbstractViewWidget::setClosable(bool closable)
{
  m_Closable = closable;
  updateClosable();
}

void VXAbstractViewWidget::notifyClosingView()
{
  Q_EMIT closingView();
}

void VXAbstractViewWidget::notifyViewWidgetCreated(VXAbstractViewWidget* splitView)
{
  Q_EMIT viewWidgetCreated(this, splitView);
}

void VXAbstractViewWidget::renderView()
{
  if (!m_BlockRender && m_VisualizationWidget != nullptr)
    m_VisualizationWidget->render();
}

void VXAbstractViewWidget::resetCamera()
{
  if (!m_BlockRender && m_VisualizationWidget != nullptr)
    m_VisualizationWidget->resetCamera();
}

void VXAbstractViewWidget::unlinkCamera()
{
  if (!m_BlockRender && m_VisualizationWidget != nullptr)
    m_VisualizationWidget->unlinkCamera();
}

void VXAbstractViewWidget::updateScene()
{
  if (m_BlockRender || m_VisualizationWidget == nullptr)
    return;
  m_VisualizationWidget->render();
  m_VisualizationWidget->resetCamera();
}

void VXAbstractViewWidget::setBlockRender(bool block)
{
  m_BlockRender = block;
  vtkRenderer* renderer =
    m_VisualizationWidget != nullptr ? m_VisualizationWidget->getRenderer() : nullptr;
  if (renderer == nullptr)
    return;
  if (block)
  {
    renderer->DrawOff();
    return;
  }
  renderer->DrawOn();
  if (!m_BlockRender)
    m_VisualizationWidget->render();
}

void VXAbstractViewWidget::onPipelineOutputReloaded()
{
  if (m_VisualizationWidget != nullptr)
    m_VisualizationWidget->updateGridAxesBounds(true);
}

void VXAbstractViewWidget::mousePressed()
{
  // the flag is set directly; the grid's answer to markActive re-polishes
  m_Active = true;
  Q_EMIT markActive(this);
}

void VXAbstractViewWidget::updateStatusMessage(QString) {}

void VXAbstractViewWidget::saveState(nlohmann::json& output)
{
  if (!output.is_object())
    output = nlohmann::json::object();
  output[k_BlockRenderKey] = m_BlockRender;
  output[k_ActiveViewKey] = m_Active;
  if (m_VisualizationWidget != nullptr)
    m_VisualizationWidget->saveState(output);
}

void VXAbstractViewWidget::loadState(nlohmann::json input)
{
  if (!input.is_object())
    return;
  if (input.contains(k_BlockRenderKey))
    setBlockRender(input.at(k_BlockRenderKey).get<bool>());
  if (input.contains(k_ActiveViewKey))
  {
    const bool active = input.at(k_ActiveViewKey).get<bool>();
    setActive(active);
    if (active)
      Q_EMIT markActive(this);
  }
  if (m_VisualizationWidget != nullptr)
    m_VisualizationWidget->loadState(input);
}

void VXAbstractViewWidget::updateClosable() {}
