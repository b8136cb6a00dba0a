#pragma once

#include "KXVtkLib_export.h"

#include "visualization/QtWidgets/VXChartWidget.hpp"

class vtkColorTransferFunction;
class vtkCompositeTransferFunctionItem;
class vtkPiecewiseControlPointsItem;
class vtkPiecewiseFunction;

/**
 * The opacity editor of the volume data view: the array's histogram as bars with the opacity
 * function drawn over it (right axis, 0 to 1). A click on an empty spot adds a control point, a
 * drag moves one, the Delete key removes the current one; every edit changes the function the
 * volume draws with, so the view follows at once.
 */
class KXVTKLIB_EXPORT VXHistogramOpacityWidget : public VXChartWidget
{
  Q_OBJECT

public:
  explicit VXHistogramOpacityWidget(QWidget* parent = nullptr);
  ~VXHistogramOpacityWidget() override;

  /** Edits @p opacity; @p colors tints the area under the curve. Null clears the editor. */
  void setFunctions(vtkPiecewiseFunction* opacity, vtkColorTransferFunction* colors);

  /** The editable points of the current opacity function; null without one. */
  vtkPiecewiseControlPointsItem* controlPoints() const;

Q_SIGNALS:
  /** The user changed the opacity function. */
  void opacityFunctionEdited();

private:
  vtkSmartPointer<vtkCompositeTransferFunctionItem> m_FunctionItem;
  vtkSmartPointer<vtkPiecewiseControlPointsItem> m_ControlPoints;
  unsigned long m_EditObserver = 0;
};
