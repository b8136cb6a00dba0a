#include "ViewerApplication.hpp"

#include <visualization/QtWidgets/VXVisualizationWidget.hpp>
#include <visualization/VXBridgeObject.hpp>
#include <visualization/VXDataSource.hpp>
#include <visualization/VXPointsRepPimpl.hpp>

#include <vtkCamera.h>
#include <vtkPNGWriter.h>
#include <vtkRenderWindow.h>
#include <vtkRenderer.h>
#include <vtkWindowToImageFilter.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <cstdio>

ViewerApplication::ViewerApplication(ViewerOptions options)
: m_Options(std::move(options))
, m_View(std::make_unique<ViewerViewFrame>())
, m_Pipeline(std::make_unique<VXPipeline>())
{
  m_View->setupView();
  m_View->resize(m_Options.size);
  m_Pipeline->setActiveViewWidget(m_View.get());
  QObject::connect(m_Pipeline.get(), &VXPipeline::sendPopupMessage, [this](const QString& title, const QString& message) {
    m_Errors << message;
    std::fprintf(stderr, "%s: %s\n", qPrintable(title), qPrintable(message));
  });
  QObject::connect(m_Pipeline.get(), &VXPipeline::sendOutputMessage,
                   [](const QString& message) { std::fprintf(stderr, "%s\n", qPrintable(message)); });
}

ViewerApplication::~ViewerApplication()
{
  // the tree goes before the view its data views draw in
  m_Pipeline.reset();
  m_View.reset();
}

bool ViewerApplication::load()
{
  if(!applyRepresentation())
    return false;
  for(const QString& file : m_Options.files)
  {
    if(!QFileInfo(file).isFile())
    {
      std::fprintf(stderr, "kxvtk-viewer: cannot load '%s': no such file\n", qPrintable(file));
      return false;
    }
    const int errorsBefore = m_Errors.size();
    m_Pipeline->importFile(file);
    VXBridgeObject* bridge = m_Pipeline->bridges().last();
    if(bridge->dataSources().isEmpty())
    {
      if(m_Errors.size() == errorsBefore)
        std::fprintf(stderr, "kxvtk-viewer: cannot load '%s': not a readable data file\n", qPrintable(file));
      return false;
    }
  }
  return applyColoring();
}

bool ViewerApplication::applyRepresentation()
{
  if(m_Options.representation.isEmpty())
    return true;
  if(!VXRepresentation::k_RepresentationStringToType.contains(m_Options.representation))
  {
    std::fprintf(stderr, "kxvtk-viewer: unknown representation '%s'; one of: %s\n", qPrintable(m_Options.representation),
                 qPrintable(VXRepresentation::k_RepresentationStringToType.keys().join(", ")));
    return false;
  }
  const VXRepresentation::Type type = VXRepresentation::k_RepresentationStringToType.value(m_Options.representation);
  // every kind of data set gets the chosen data view as its default
  for(auto setter : {&VXPipeline::setDefaultImageGeomRepType, &VXPipeline::setDefaultRectGridRepType,
                     &VXPipeline::setDefaultVertexRepType, &VXPipeline::setDefaultEdgeRepType,
                     &VXPipeline::setDefaultTriangleRepType, &VXPipeline::setDefaultQuadRepType,
                     &VXPipeline::setDefaultTetRepType, &VXPipeline::setDefaultHexRepType, &VXPipeline::setDefaultRepType})
    setter(type);
  return true;
}

bool ViewerApplication::applyColoring()
{
  if(m_Options.colorBy.isEmpty())
    return true;
  bool found = false;
  for(VXBridgeObject* bridge : m_Pipeline->bridges())
  {
    for(VXDataSource* source : bridge->dataSources())
    {
      if(!source->getImportedArrayNames().contains(m_Options.colorBy))
        continue;
      found = true;
      for(QObject* child : source->children())
      {
        auto* representation = qobject_cast<VXRepresentation*>(child);
        if(representation == nullptr)
          continue;
        for(VXRepresentationPimpl* split : representation->getDataViewSplits())
        {
          // outlines have no colouring; every other data view colours by array
          if(auto* colored = dynamic_cast<VXPointsRepPimpl*>(split))
            colored->setActiveArray(m_Options.colorBy);
          else
            std::fprintf(stderr, "kxvtk-viewer: the %s view of '%s' has no array colouring\n",
                         qPrintable(representation->humanTypeName()), qPrintable(source->name()));
        }
      }
    }
  }
  if(!found)
    std::fprintf(stderr, "kxvtk-viewer: no data set has an array named '%s'\n", qPrintable(m_Options.colorBy));
  return found;
}

bool ViewerApplication::saveScreenshot()
{
  m_View->show();
  QCoreApplication::processEvents();
  VXVisualizationWidget* renderWidget = m_View->getVisualizationWidget();
  vtkRenderWindow* window = renderWidget->renderWindow();
  // an oblique view shows three faces of a volume instead of one
  vtkRenderer* renderer = renderWidget->getRenderer();
  renderer->ResetCamera();
  renderer->GetActiveCamera()->Azimuth(35.0);
  renderer->GetActiveCamera()->Elevation(25.0);
  renderer->GetActiveCamera()->OrthogonalizeViewUp();
  renderer->ResetCamera();
  window->Render();
  vtkNew<vtkWindowToImageFilter> capture;
  capture->SetInput(window);
  capture->SetInputBufferTypeToRGB();
  capture->ReadFrontBufferOff();
  capture->Update();
  vtkNew<vtkPNGWriter> writer;
  const std::string path = m_Options.screenshotPath.toStdString();
  writer->SetFileName(path.c_str());
  writer->SetInputConnection(capture->GetOutputPort());
  writer->Write();
  if(writer->GetErrorCode() != 0 || !QFileInfo(m_Options.screenshotPath).isFile())
  {
    std::fprintf(stderr, "kxvtk-viewer: failed to write '%s'\n", qPrintable(m_Options.screenshotPath));
    return false;
  }
  std::printf("%s\n", qPrintable(m_Options.screenshotPath));
  return true;
}
