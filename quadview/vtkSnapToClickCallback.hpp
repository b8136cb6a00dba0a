#pragma once

#include "KXVtkLib_export.h"

#include <vtkCommand.h>
#include <vtkSmartPointer.h>

class VXResliceImageViewer;
class vtkResliceCursor;
class vtkResliceCursorWidget;
class vtkWorldPointPicker;

/**
 * Double click in a quad view slice pane: puts the shared cursor's centre on
 * the clicked point, kept inside the image, and raises
 * ResliceAxesChangedEvent and EndInteractionEvent on the pane's cursor widget
 * so that every pane, overlay and annotation follows. Observe
 * LeftButtonDoubleClickEvent on the pane's interactor with it.
 */
class KXVTKLIB_EXPORT vtkSnapToClickCallback : public vtkCommand
{
public:
  static vtkSnapToClickCallback* New();
  vtkTypeMacro(vtkSnapToClickCallback, vtkCommand);

  /** The pane this command serves: its slice pane index, viewer, cursor widget and shared cursor.
   */
  void setPane(int slicePaneIndex, VXResliceImageViewer* viewer, vtkResliceCursorWidget* widget,
               vtkResliceCursor* cursor);
  /** Forgets the pane; Execute then does nothing. */
  void clear();
  int slicePaneIndex() const { return m_SlicePaneIndex; }

  void Execute(vtkObject* caller, unsigned long event, void* callData) override;

protected:
  vtkSnapToClickCallback();
  ~vtkSnapToClickCallback() override;

private:
  vtkSnapToClickCallback(const vtkSnapToClickCallback&) = delete;
  void operator=(const vtkSnapToClickCallback&) = delete;

  int m_SlicePaneIndex = -1;
  vtkSmartPointer<VXResliceImageViewer> m_Viewer;
  vtkSmartPointer<vtkResliceCursorWidget> m_Widget;
  vtkSmartPointer<vtkResliceCursor> m_Cursor;
  vtkSmartPointer<vtkWorldPointPicker> m_Picker;
};
