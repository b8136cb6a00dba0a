#pragma once

#include "KXVtkLib_export.h"

#include "visualization/QtWidgets/VXChartWidget.hpp"

class VXLookupTable;
class vtkColorTransferControlPointsItem;
class vtkColorTransferFunctionItem;

/**
 * Edits the points of a continuous colour map: the map drawn as a colour bar over the value
 * axis with its control points on it. A click on an empty spot adds a point with the colour
 * the map has there, a drag moves one (the end points too, which widens or narrows the
 * mapped range), the Delete key removes the current one, and a double click asks for the
 * point's colour. Every edit changes the table's function itself, so whatever draws with the
 * table follows at once. Categorical maps are not drawn here (VXLUTEditor shows their rows).
 */
class KXVTKLIB_EXPORT VXColorMapEditorWidget : public VXChartWidget
{
  Q_OBJECT

public:
  static inline const QString k_PointColorTitle = QStringLiteral("Select Point Color");

  explicit VXColorMapEditorWidget(QWidget* parent = nullptr);
  ~VXColorMapEditorWidget() override;

  /** Edits @p table's continuous function; null or a categorical map clears the editor. */
  void setLookupTable(VXLookupTable* table);
  VXLookupTable* lookupTable() const;
  /** The editable points; null without a continuous map. */
  vtkColorTransferControlPointsItem* controlPoints() const;

public Q_SLOTS:
  /** Asks for the colour of the current point and sets it; cancelling keeps the colour. */
  void editCurrentPointColor();

Q_SIGNALS:
  /** The user changed the colour map. */
  void colorMapEdited();

private:
  void detach();

  VXLookupTable* m_Table = nullptr;
  QMetaObject::Connection m_TableDestroyed;
  vtkSmartPointer<vtkColorTransferFunctionItem> m_FunctionItem;
  vtkSmartPointer<vtkColorTransferControlPointsItem> m_ControlPoints;
  unsigned long m_EditObserver = 0;
  unsigned long m_DragObserver = 0;
  unsigned long m_PointEditObserver = 0;
  bool m_SettingColor = false;
};
