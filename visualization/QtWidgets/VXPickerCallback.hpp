#pragma once

#include "KXVtkLib_export.h"

#include <vtkActor.h>
#include <vtkCommand.h>
#include <vtkImageData.h>
#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

#include <QtCore/QString>

#include <functional>
#include <optional>
#include <string>

class vtkDataSet;
class vtkDataSetAttributes;
class vtkIdTypeArray;
class vtkImageSlice;
class vtkLinearTransform;
class vtkRenderWindow;
class vtkRenderer;

/**
 * Answers the pick requests of a render view. The view's hover widget calls
 * it when the cursor rests (TimerEvent) and moves on (EndInteractionEvent);
 * the view's VXInteractorStyleCamera calls it on clicks with a pick flag
 * (PickEvent) and on key presses and releases (UserEvent, UserEvent + 1). It
 * runs a hardware pick, writes the text describing the point or cell under the
 * cursor and places one of its two highlight actors on it. The view hands it
 * two callables so that it never needs to know the widget class.
 */
class KXVTKLIB_EXPORT VXPickerCallback : public vtkCommand
{
public:
  static VXPickerCallback* New();
  vtkTypeMacro(VXPickerCallback, vtkCommand);

  using PickFunction = std::function<void(double* pickPos, bool pick1ModeOn, bool pick2ModeOn)>;
  using RenderFunction = std::function<void()>;

  /** Dispatches the hover, pick and key events described in the class comment. */
  void Execute(vtkObject* caller, unsigned long eventId, void* callData) override;

  /** The scene renderer picks run in; held weakly. */
  void setRenderer(vtkRenderer* renderer);
  /** The render window of the view; held weakly. */
  void setRenderWindow(vtkRenderWindow* window);
  /** Called with the pick position and flags after a successful click pick. */
  void setPickFunction(PickFunction function) { m_PickFunction = std::move(function); }
  /** Called when highlighters change and the view needs a frame. */
  void setRenderFunction(RenderFunction function) { m_RenderFunction = std::move(function); }

  /** Picks at the interactor's event position and returns the text describing the hit; empty on a
   * miss. */
  std::string GeneratePickInfo();
  /** Creates both highlight actors (hidden, unpickable, black) on the scene renderer. */
  void setupHighlightActors();
  /** Places the point marker at (x, y, z), through @p transform when given, @p size world units
   * across. */
  void createPointHighlighter(double x, double y, double z, vtkLinearTransform* transform,
                              std::optional<double> size) const;
  /** Outlines cell @p cellIds[0] of @p data, through @p transform when given. */
  void createCellHighlighter(vtkDataSet* data, const vtkIdTypeArray* cellIds,
                             vtkLinearTransform* transform) const;
  /** Shows or hides both highlight actors. */
  void toggleHighlightersVisibility(bool visible) const;
  /**
   * The factor that brings the current highlighter to about 15 pixels across at
   * the world point (x, y, z); NaN when the highlighter has no width yet.
   */
  double getPointHighlighterSizeRatio(double x, double y, double z) const;

  /**
   * The pick text of item @p id of @p attributes: name line, id line, the
   * original-id arrays, the coordinates, then every other array, each line
   * ended by @p lineEnding. A negative id gives "Idx = -1".
   */
  static std::string printDataValues(vtkDataSetAttributes* attributes, vtkIdType id,
                                     const std::string& itemKind, const std::string& geometryName,
                                     const std::string& coords, const std::string& lineEnding);

  void setHoverPoints(bool on) { m_HoverPoints = on; }
  bool hoverPointsOn() const { return m_HoverPoints; }
  void setHoverCells(bool on) { m_HoverCells = on; }
  bool hoverCellsOn() const { return m_HoverCells; }
  /** Whether key 1 or 2 is held (set by the key events). */
  bool keyPickOn() const { return m_KeyPick; }

  /** The latest pick text. */
  QString getPickedDataText() const { return m_PickText; }
  /** Replaces the pick text, e.g. to restore one. */
  void setPickedDataText(const QString& text) { m_PickText = text; }
  /** World position of the latest pick. */
  const double* getPickPosition() const { return m_PickPosition; }
  /** Structured index of the latest point pick on image data. */
  void getLastImageDataIndex(int index[3]) const;
  vtkImageData* getLastImageData() const { return m_LastImageData; }

  vtkActor* getPointHighlightActor() const { return m_PointHighlightActor; }
  vtkActor* getCellHighlightActor() const { return m_CellHighlightActor; }

protected:
  VXPickerCallback();
  ~VXPickerCallback() override;

private:
  void requestRender() const;

  vtkWeakPointer<vtkRenderer> m_Renderer;
  vtkWeakPointer<vtkRenderWindow> m_RenderWindow;
  PickFunction m_PickFunction;
  RenderFunction m_RenderFunction;
  bool m_HoverPoints = false;
  bool m_HoverCells = false;
  bool m_KeyPick = false;
  vtkSmartPointer<vtkActor> m_PointHighlightActor;
  vtkSmartPointer<vtkActor> m_CellHighlightActor;
  float m_HighlightLineWidth = 2.0f;
  QString m_PickText;
  double m_PickPosition[3] = { 0.0, 0.0, 0.0 };
  vtkWeakPointer<vtkImageData> m_LastImageData;
  vtkWeakPointer<vtkImageSlice> m_LastImageSlice;
  int m_LastImageIndex[3] = { 0, 0, 0 };
};
