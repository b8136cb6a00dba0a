#include "quadview/VXQuadViewWindow.hpp"

#include "quadview/VXGeometryTreeWidget.hpp"
#include "quadview/VXQuadView.hpp"
#include "quadview/VXQuadViewModuleWidget.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXPipelineModel.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <nlohmann/json.hpp>

#include <QtCore/QFile>
#include <QtCore/QSaveFile>
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
  file->addAction("Save Quad View &State...", this, &VXQuadViewWindow::saveStateAs)
    ->setObjectName("saveQuadStateAction");
  file->addAction("&Load Quad View State...", this, &VXQuadViewWindow::openState)
    ->setObjectName("loadQuadStateAction");
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

namespace
{
const QString k_StateFilter = QStringLiteral("Quad View State (*.json)");
}

bool VXQuadViewWindow::saveStateFile(const QString& path)
{
  nlohmann::json record;
  m_Module->quadView()->saveState(record);
  const std::string text = record.dump(2);
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly) ||
      file.write(text.data(), static_cast<qint64>(text.size())) !=
        static_cast<qint64>(text.size()) ||
      !file.commit())
  {
    Q_EMIT printOutput(QString("Failed to write Quad View state to '%1'.").arg(path));
    return false;
  }
  return true;
}

bool VXQuadViewWindow::loadStateFile(const QString& path)
{
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
  {
    Q_EMIT printOutput(QString("Could not read Quad View state '%1'.").arg(path));
    return false;
  }
  const QByteArray bytes = file.readAll();
  const nlohmann::json record = nlohmann::json::parse(bytes.begin(), bytes.end(), nullptr, false);
  if (record.is_discarded())
  {
    Q_EMIT printOutput(QString("Quad View state '%1' is not valid JSON.").arg(path));
    return false;
  }
  return m_Module->quadView()->loadState(record);
}

void VXQuadViewWindow::saveStateAs()
{
  const QString path = VXUserPrompt::getSaveFileName(this, "Save Quad View State", k_StateFilter);
  if (!path.isEmpty())
    saveStateFile(path);
}

void VXQuadViewWindow::openState()
{
  const QString path = VXUserPrompt::getOpenFileName(this, "Load Quad View State", k_StateFilter);
  if (!path.isEmpty())
    loadStateFile(path);
}
