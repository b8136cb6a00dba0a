#pragma once

#include "KXVtkLib_export.h"

#include <vtkSmartPointer.h>

#include <QtCore/QString>
#include <QtWidgets/QWidget>

class QSplitter;
class VXDataSource;
class VXQuadView;
class VXQuadViewControlWidget;
class vtkImageData;

/**
 * What a host creates to show one image geometry in four panes: the quad
 * view beside its control panel in a splitter. The view does the work; this
 * widget only puts the two together and passes the view's messages on.
 */
class KXVTKLIB_EXPORT VXQuadViewModuleWidget : public QWidget
{
  Q_OBJECT

public:
  explicit VXQuadViewModuleWidget(QWidget* parent = nullptr);
  ~VXQuadViewModuleWidget() override;

  VXQuadView* quadView() const { return m_View; }
  VXQuadViewControlWidget* controlWidget() const { return m_Controls; }
  QSplitter* splitter() const { return m_Splitter; }

  /** Shows @p source's image in the quad view; a source whose output is no image does nothing. */
  bool openGeometry(VXDataSource* source);

Q_SIGNALS:
  /** A message of the quad view for the host's output. */
  void printOutput(QString message);

private:
  QSplitter* m_Splitter = nullptr;
  VXQuadView* m_View = nullptr;
  VXQuadViewControlWidget* m_Controls = nullptr;
};
