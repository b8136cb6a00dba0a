#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QPointer>
#include <QtCore/QString>

#include <vtkAbstractWidget.h>
#include <vtkProp.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

#include <functional>
#include <vector>

class VXAbstractViewWidget;
class vtkObject;
class vtkRenderer;

/**
 * One global source in one render view: that view's settings and the props and
 * interactive widget built from them. The owning source rebuilds the picture
 * from the settings; a split view gets a copy of the settings and builds its own.
 */
class KXVTKLIB_EXPORT VXGlobalSourcePimpl
{
public:
  VXGlobalSourcePimpl(VXAbstractViewWidget* view, nlohmann::json settings);
  ~VXGlobalSourcePimpl();
  VXGlobalSourcePimpl(const VXGlobalSourcePimpl&) = delete;
  VXGlobalSourcePimpl& operator=(const VXGlobalSourcePimpl&) = delete;

  VXAbstractViewWidget* view() const;
  /** The view's main renderer; null once the view is gone. */
  vtkRenderer* renderer() const;
  vtkRenderWindowInteractor* interactor() const;

  const nlohmann::json& settings() const { return m_Settings; }
  nlohmann::json& settings() { return m_Settings; }

  bool isVisible() const { return m_Visible; }
  /** Shows or hides the props and the widget without rebuilding them. */
  void setVisible(bool visible);

  /** Puts a prop into the view; it leaves with clear(). */
  void addProp(vtkProp* prop);
  /** Enables an interactive widget on the view; @p onInteractionEnd runs after each drag. */
  void setWidget(vtkAbstractWidget* widget, std::function<void()> onInteractionEnd);
  const std::vector<vtkSmartPointer<vtkProp>>& props() const { return m_Props; }
  vtkAbstractWidget* widget() const { return m_Widget; }
  /** Takes every prop and the widget out of the view. */
  void clear();

  /** Why the last build showed nothing, or empty. */
  QString error() const { return m_Error; }
  void setError(const QString& error);
  /** True once the current error has been told to the user. */
  bool errorReported() const { return m_ErrorReported; }
  void setErrorReported() { m_ErrorReported = true; }

private:
  void onInteractionEnd(vtkObject* caller, unsigned long event, void* data);

  QPointer<VXAbstractViewWidget> m_View;
  vtkWeakPointer<vtkRenderer> m_Renderer;
  nlohmann::json m_Settings;
  bool m_Visible = true;
  std::vector<vtkSmartPointer<vtkProp>> m_Props;
  vtkSmartPointer<vtkAbstractWidget> m_Widget;
  // a widget talks to its interactor until it dies: keep the interactor as long as the widget
  vtkSmartPointer<vtkRenderWindowInteractor> m_Interactor;
  unsigned long m_ObserverTag = 0;
  std::function<void()> m_OnInteractionEnd;
  QString m_Error;
  bool m_ErrorReported = false;
};
