#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"

#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

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
  if(m_VisualizationWidget != nullptr)
    return;
  m_VisualizationWidget = new VXVisualizationWidget(this, 2);
  auto* frameLayout = qobject_cast<QVBoxLayout*>(layout());
  if(frameLayout == nullptr)
  {
    frameLayout = new QVBoxLayout(this);
    frameLayout->setContentsMargins(0, 0, 0, 0);
  }
  frameLayout->addWidget(m_VisualizationWidget);
  m_VisualizationWidget->show();
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
  if(!m_BlockRender && m_VisualizationWidget != nullptr)
    m_VisualizationWidget->render();
}

void VXAbstractViewWidget::setBlockRender(bool block)
{
  m_BlockRender = block;
  vtkRenderer* renderer = m_VisualizationWidget != nullptr ? m_VisualizationWidget->getRenderer() : nullptr;
  if(renderer == nullptr)
    return;
  if(block)
  {
    renderer->DrawOff();
    return;
  }
  renderer->DrawOn();
  if(!m_BlockRender)
    m_VisualizationWidget->render();
}
