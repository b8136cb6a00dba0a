#pragma once

#include "KXVtkLib_export.h"

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtWidgets/QMainWindow>

class VXDataSource;
class VXPipelineModel;
class VXQuadViewModuleWidget;

/**
 * A window of its own for one quad view: a VXQuadViewModuleWidget with a
 * "File" menu that opens an image geometry of the pipeline (chosen in a
 * VXGeometryTreeWidget), saves or copies a picture of all panes, and closes
 * the window. It follows the pipeline: a removed geometry clears the view, and
 * a state that names a geometry by path opens it from the pipeline.
 */
class KXVTKLIB_EXPORT VXQuadViewWindow : public QMainWindow
{
  Q_OBJECT

public:
  explicit VXQuadViewWindow(VXPipelineModel* model = nullptr, QWidget* parent = nullptr);
  ~VXQuadViewWindow() override;

  /** The pipeline whose image geometries the window opens. */
  void setPipelineModel(VXPipelineModel* model);
  VXPipelineModel* pipelineModel() const;
  VXQuadViewModuleWidget* moduleWidget() const { return m_Module; }

  /** Shows @p source's image; false when its output is no image geometry. */
  bool openGeometry(VXDataSource* source);
  /** Opens the pipeline's geometry of that path (bridge name + "/" + source name). */
  bool openGeometryPath(const QString& path);

  /** Writes the view's record (VXQuadView::saveState) to @p path; false, with a message, on
   * failure. */
  bool saveStateFile(const QString& path);
  /** Reads a record from @p path and applies it; false, with a message, when it cannot. */
  bool loadStateFile(const QString& path);

public Q_SLOTS:
  /** Asks for one of the pipeline's image geometries and opens it. */
  void chooseGeometry();
  /** Asks a file name and saves the view's record there. */
  void saveStateAs();
  /** Asks for a record file and loads it. */
  void openState();

Q_SIGNALS:
  void printOutput(QString message);

private:
  void createMenus();

  VXQuadViewModuleWidget* m_Module = nullptr;
  QPointer<VXPipelineModel> m_Model;
  QMetaObject::Connection m_RemovalConnection;
};
