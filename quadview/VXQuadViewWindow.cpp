#include "quadview/VXQuadViewWindow.hpp"

#include "quadview/VXGeometryTreeWidget.hpp"
#include "quadview/VXQuadView.hpp"
#include "quadview/VXQuadViewModuleWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXPipelineModel.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <QtWidgets/QDialog>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

VXQuadViewWindow::VXQuadViewWindow(VXPipelineModel* model, QWidget* parent)
  : QMainWindow(parent)
  , m_Module(new VXQuadViewModuleWidget(this))
{
  setObjectName("VXQuadViewWindow");
  setWindowTitle("Quad View");
  setCentralWidget(m_Module);
  createMenus();
  connect(m_Module, &VXQuadViewModuleWidget::printOutput, this, &VXQuadViewWindow::printOutput);
  VXQuadView* view = m_Module->quadView();
  connect(view, &VXQuadView::loadGeometryRequested, this,
          [this](const QString& path, VXQuadView* requester)
          {
            if (requester == m_Module->quadView())
              openGeometryPath(path);
          });
  connect(view, &VXQuadView::viewCleared, this, [this]() { setWindowTitle("Quad View"); });
  setPipelineModel(model);
}

VXQuadViewWindow::~VXQuadViewWindow()
{
  disconnect(m_RemovalConnection);
}

void VXQuadViewWindow::createMenus()
{
  QMenu* file = menuBar()->addMenu("&File");
  QAction* open =
    file->addAction("&Open Image Geometry...", this, &VXQuadViewWindow::chooseGeometry);
  open->setObjectName("openGeometryAction");
  VXQuadView* view = m_Module->quadView();
  file->addAction("Save Screenshot of &All Panes...", view, &VXQuadView::saveAllPanesScreenshot);
  file->addAction("&Copy All Panes to Clipboard", view, &VXQuadView::copyAllPanesScreenshot);
  file->addSeparator();
  file->addAction("&Close", this, &QWidget::close);
}

void VXQuadViewWindow::setPipelineModel(VXPipelineModel* model)
{
  disconnect(m_RemovalConnection);
  m_Model = model;
  if (model != nullptr && model->pipeline() != nullptr)
    m_RemovalConnection = connect(model->pipeline(), &VXPipeline::dataSourceRemoved,
                                  m_Module->quadView(), &VXQuadView::onDataSourceRemoved);
}

VXPipelineModel* VXQuadViewWindow::pipelineModel() const
{
  return m_Model;
}

bool VXQuadViewWindow::openGeometry(VXDataSource* source)
{
  if (!m_Module->openGeometry(source))
  {
    Q_EMIT printOutput(QString("Quad View: '%1' is no image geometry.")
                         .arg(VXGeometryTreeWidget::geometryPath(source)));
    return false;
  }
  setWindowTitle("Quad View - " + VXGeometryTreeWidget::geometryPath(source));
  return true;
}

bool VXQuadViewWindow::openGeometryPath(const QString& path)
{
  if (m_Model == nullptr)
    return false;
  for (VXDataSource* source : m_Model->getAllDataSources())
  {
    if (VXGeometryTreeWidget::geometryPath(source) == path)
      return openGeometry(source);
  }
  return false;
}

void VXQuadViewWindow::chooseGeometry()
{
  QDialog dialog(this);
  dialog.setObjectName("chooseGeometryDialog");
  dialog.setWindowTitle("Open Image Geometry");
  auto* layout = new QVBoxLayout(&dialog);
  auto* tree = new VXGeometryTreeWidget(&dialog);
  tree->setPipelineModel(m_Model);
  layout->addWidget(tree);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  layout->addWidget(buttons);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setEnabled(false);
  connect(tree, &VXGeometryTreeWidget::currentGeometryChanged, ok,
          [ok](VXDataSource* source) { ok->setEnabled(source != nullptr); });
  connect(tree, &VXGeometryTreeWidget::geometryChosen, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  if (VXUserPrompt::execDialog(dialog) != QDialog::Accepted)
    return;
  if (VXDataSource* source = tree->selectedDataSource())
    openGeometry(source);
}
