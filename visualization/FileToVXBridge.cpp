#include "visualization/FileToVXBridge.hpp"

#include "bridge/VtkBridge.hpp"
#include "utils/DataSetReaders.hpp"
#include "visualization/VXDataSource.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXStyle.hpp>

#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QTimer>

namespace
{
/** How long a file may be away in a save (renamed over by a temporary file) before it counts as
 * gone. */
constexpr int k_RecheckMilliseconds = 200;

/** Reads a VTK or image file by suffix; empty suffix means not one of ours. */
vtkSmartPointer<vtkDataSet> readOtherFile(const QString& path, const QString& suffix, bool& known)
{
  known = true;
  if (KXVtk::utils::DataSetSuffixes().contains(suffix))
    return KXVtk::utils::ReadDataSetFile(path, false);
  if (KXVtk::utils::ImageSuffixes().contains(suffix))
    return KXVtk::utils::ReadDataSetFile(path, true);
  known = false;
  return nullptr;
}

/**
 * Tells the user the file is gone and offers to locate it: the path chosen,
 * or empty when the user declines or cancels.
 */
QString locateMissingFile(const QString& purpose, const QString& dialogTitle,
                          const QString& filePath)
{
  VXUserPrompt::Question question;
  question.icon = QMessageBox::Information;
  question.title = "Source File Missing";
  question.text =
    QString(
      "The source file (%1) has been renamed or deleted. Do you want to locate the file to %2? "
      "(WARNING: This "
      "will overwrite the current data for this pipeline item with the data in the file selected!)")
      .arg(filePath, purpose);
  question.buttons = QMessageBox::Yes | QMessageBox::No;
  question.defaultButton = QMessageBox::No;
  if (VXUserPrompt::ask(nullptr, question) != QMessageBox::Yes)
    return {};
  return VXUserPrompt::getOpenFileName(nullptr, dialogTitle, FileToVXBridge::FileFilterList());
}
} // namespace

FileToVXBridge::FileToVXBridge(QObject* parent)
  : VXBridgeObject(parent)
  , m_FileWatcher(new QFileSystemWatcher(this))
  , m_RecheckTimer(new QTimer(this))
{
  connect(m_FileWatcher, &QFileSystemWatcher::fileChanged, this, &FileToVXBridge::onFileChanged);
  m_RecheckTimer->setSingleShot(true);
  m_RecheckTimer->setInterval(k_RecheckMilliseconds);
  connect(m_RecheckTimer, &QTimer::timeout, this,
          [this]()
          {
            if (!isWatchingFile() && !rewatchIfBack())
              flagMissing();
          });
}

FileToVXBridge::~FileToVXBridge() = default;

QString FileToVXBridge::FileFilterList()
{
  QStringList filters;
  filters << "All Supported Files (*.voxelia *.vti *.vtr *.vts *.vtu *.vtp *.vtk *.stl *.jpeg "
             "*.jpg *.png *.tif *.tiff *.bmp "
             "*.pvti *.pvtr *.pvts *.pvtu *.pvtp *.pvtk)";
  filters << "VOXELIA-KX Files (*.voxelia)";
  filters << "VTK Image Data Files (*.vti)" << "VTK Rectilinear Grid Files (*.vtr)"
          << "VTK Structured Grid Files (*.vts)"
          << "VTK Unstructured Grid Files (*.vtu)" << "VTK Poly Data Files (*.vtp)"
          << "VTK Legacy Files (*.vtk)"
          << "STL Files (*.stl)";
  filters << "JPEG Image Files (*.jpeg)" << "JPG Image Files (*.jpg)" << "PNG Image Files (*.png)"
          << "TIF Image Files (*.tif)"
          << "TIFF Image Files (*.tiff)" << "BMP Image Files (*.bmp)";
  return filters.join(";;");
}

QString FileToVXBridge::sourceName()
{
  return QFileInfo(m_FilePath).fileName();
}

QIcon FileToVXBridge::getIcon()
{
  return KXStyle::generateThemeIconFromName("PipelineFileBridgeObj");
}

void FileToVXBridge::import(const QString& filePath)
{
  m_FilePath = filePath;
  m_RecheckTimer->stop();
  if (!m_FileWatcher->files().contains(filePath))
    m_FileWatcher->addPath(filePath);
  setName(QFileInfo(filePath).fileName(), 0);
  if (!m_DataSources.isEmpty())
    clear();

  const QString suffix = QFileInfo(filePath).suffix().toLower();
  if (suffix == "voxelia")
  {
    QString error;
    auto structure = CV::VtkBridge::selectivelyImportGeometryData(filePath, &error);
    if (!structure)
      Q_EMIT sendPopupMessage("Load File Error", error);
    else
      importDataStructure(structure);
    return;
  }
  bool known = false;
  vtkSmartPointer<vtkDataSet> dataSet = readOtherFile(filePath, suffix, known);
  if (!known)
  {
    Q_EMIT sendPopupMessage(
      "Load File Error",
      QString("Invalid file type for file at '%1'. Cannot load the file for visualization")
        .arg(filePath));
    return;
  }
  if (dataSet)
  {
    VXDataSource* source = addDataSource();
    source->setDataSet(dataSet);
    Q_EMIT dataSourceAdded(source);
  }
}

void FileToVXBridge::reload()
{
  if (m_FilePath.isEmpty() || m_DataSources.isEmpty())
  {
    Q_EMIT sendOutputMessage("The pipeline object doesn't have any data defined; not a reload.");
    return;
  }
  if (m_Flagged || !QFileInfo::exists(m_FilePath))
  {
    const QString located = locateMissingFile("reload", "Locate File To Reload", m_FilePath);
    if (located.isEmpty())
      return;
    m_FilePath = located;
    m_Flagged = false;
    Q_EMIT autoReloadFlagChanged(this, false);
  }

  const QString suffix = QFileInfo(m_FilePath).suffix().toLower();
  if (suffix == "voxelia")
  {
    QString error;
    auto structure = CV::VtkBridge::selectivelyImportGeometryData(m_FilePath, &error);
    if (!structure)
    {
      Q_EMIT sendPopupMessage("Reload File Error", error);
      return;
    }
    reloadDataStructure(structure);
    // listeners see this twice on a host file reload: once from the structure, once here
    Q_EMIT pipelineOutputReloaded();
    return;
  }
  bool known = false;
  vtkSmartPointer<vtkDataSet> dataSet = readOtherFile(m_FilePath, suffix, known);
  if (!known)
  {
    Q_EMIT sendPopupMessage(
      "Reload File Error",
      QString("Invalid file type for file at %1. Cannot reload the file for visualization")
        .arg(m_FilePath));
    return;
  }
  if (!dataSet)
  {
    Q_EMIT sendPopupMessage(
      "Reload File Error",
      QString("An error occurred while reading file %1. Cannot reload the file for visualization")
        .arg(m_FilePath));
    return;
  }
  m_DataSources.first()->setDataSet(dataSet);
  Q_EMIT pipelineOutputReloaded();
}

void FileToVXBridge::onFileChanged(const QString&)
{
  if (m_FileWatcher == nullptr)
    return;
  if (m_FileWatcher->files().contains(m_FilePath))
  {
    reloadRewritten();
    return;
  }
  // Qt dropped the watch with the old file. Most tools save by renaming a temporary file over
  // this one: then the path is back already, or very soon.
  if (!rewatchIfBack())
    m_RecheckTimer->start();
}

bool FileToVXBridge::rewatchIfBack()
{
  if (m_FilePath.isEmpty() || !QFileInfo::exists(m_FilePath) || !m_FileWatcher->addPath(m_FilePath))
    return false;
  m_RecheckTimer->stop();
  reloadRewritten();
  return true;
}

void FileToVXBridge::reloadRewritten()
{
  m_Flagged = false;
  Q_EMIT autoReloadFlagChanged(this, false);
  reload();
}

void FileToVXBridge::flagMissing()
{
  if (m_Flagged)
    return;
  m_Flagged = true;
  Q_EMIT autoReloadFlagChanged(this, true);
  Q_EMIT sendFileMovedMessage(QString("File item %1 is no longer auto reloading because the source "
                                      "file at path %2 was renamed or deleted.\nYou can save "
                                      "the data or locate the file for auto reloading again by "
                                      "right clicking the item in the tree view and selecting the "
                                      "appropriate option.")
                                .arg(name(), m_FilePath));
}

void FileToVXBridge::setWatchFile(bool watch)
{
  if (m_FileWatcher == nullptr)
    return;
  const bool watching = isWatchingFile();
  if (!watch)
    m_RecheckTimer->stop();
  if (watching && !watch)
  {
    m_FileWatcher->removePath(m_FilePath);
    return;
  }
  if (watching || !watch)
    return;
  if (!QFileInfo::exists(m_FilePath))
  {
    const QString located =
      locateMissingFile("watch for automatic reloading", "Locate File To Watch", m_FilePath);
    if (located.isEmpty())
      return;
    m_FilePath = located;
  }
  m_Flagged = false;
  Q_EMIT autoReloadFlagChanged(this, false);
  m_FileWatcher->addPath(m_FilePath);
  reload();
}

bool FileToVXBridge::isWatchingFile() const
{
  return m_FileWatcher != nullptr && m_FileWatcher->files().contains(m_FilePath);
}

QStringList FileToVXBridge::watchedFiles() const
{
  return m_FileWatcher != nullptr ? m_FileWatcher->files() : QStringList();
}

void FileToVXBridge::write(nlohmann::json& output,
                           const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  VXBridgeObject::write(output, viewIndices);
  output["bridge_object_file_path"] = m_FilePath.toStdString();
  output["bridge_object_item_name"] = name().toStdString();
}

void FileToVXBridge::read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>&)
{
  if (!input.is_object())
    return;
  if (auto iter = input.find("bridge_object_file_path"); iter != input.end() && iter->is_string())
    import(QString::fromStdString(iter->get<std::string>()));
  if (auto iter = input.find("bridge_object_item_name"); iter != input.end() && iter->is_string())
    setName(QString::fromStdString(iter->get<std::string>()), 0);
}
