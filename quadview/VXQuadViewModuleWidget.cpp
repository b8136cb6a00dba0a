#include "quadview/VXQuadViewModuleWidget.hpp"

#include "quadview/VXQuadView.hpp"
#include "quadview/VXQuadViewControlWidget.hpp"
#include "visualization/VXDataSource.hpp"

#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSplitter>

#include <vtkImageData.h>

VXQuadViewModuleWidget::VXQuadViewModuleWidget(QWidget* parent)
  : QWidget(parent)
  , m_Splitter(new QSplitter(Qt::Horizontal, this))
  , m_View(new VXQuadView)
  , m_Controls(new VXQuadViewControlWidget)
{
  setObjectName("VXQuadViewModuleWidget");
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_Splitter);
  m_Splitter->setObjectName("quadViewSplitter");
  m_Splitter->addWidget(m_View);
  // the panel is taller than most screens once the histogram is open
  auto* scroll = new QScrollArea;
  scroll->setObjectName("quadViewControlScroll");
  scroll->setWidgetResizable(true);
  scroll->setWidget(m_Controls);
  m_Splitter->addWidget(scroll);
  m_Splitter->setStretchFactor(0, 1);
  m_Splitter->setStretchFactor(1, 0);
  m_Controls->setQuadView(m_View);
  connect(m_View, &VXQuadView::printOutput, this, &VXQuadViewModuleWidget::printOutput);
}

VXQuadViewModuleWidget::~VXQuadViewModuleWidget() = default;

bool VXQuadViewModuleWidget::openGeometry(VXDataSource* source)
{
  vtkImageData* image =
    source != nullptr ? vtkImageData::SafeDownCast(source->getOutput()) : nullptr;
  if (image == nullptr)
    return false;
  m_View->setGeometry(source, image);
  return m_View->isInitialized();
}
