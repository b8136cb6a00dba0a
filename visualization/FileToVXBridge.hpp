#pragma once

#include "visualization/VXBridgeObject.hpp"

#include <string_view>

class QFileSystemWatcher;
class QTimer;

/**
 * A bridge that reads a file: a ".voxelia" host file (its geometries, shared
 * zero-copy from the structure read) or a VTK or image file (one data set).
 * It watches the file: a rewrite reloads silently, also a save that writes a
 * temporary file and renames it over this one; a rename or delete flags the
 * item once and tells the user.
 */
class KXVTKLIB_EXPORT FileToVXBridge : public VXBridgeObject
{
  Q_OBJECT

public:
  static constexpr std::string_view k_TypeName = "FileToVXBridge";

  explicit FileToVXBridge(QObject* parent = nullptr);
  ~FileToVXBridge() override;

  /** The file dialog's filter list, all supported files first. */
  static QString FileFilterList();

  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  QString typeName() override { return QString::fromUtf8(k_TypeName.data(), k_TypeName.size()); }
  QString sourceName() override;
  QIcon getIcon() override;
  QString filePath() const override { return m_FilePath; }

  /** Reads the file and makes its data sources, replacing any this bridge had. */
  void import(const QString& filePath);
  /** Reads the file again into the existing data sources; asks for the file if it is gone. */
  void reload();
  void setWatchFile(bool watch);
  bool isWatchingFile() const;
  QStringList watchedFiles() const;
  bool autoReloadFlagged() const { return m_Flagged; }

Q_SIGNALS:
  void autoReloadFlagChanged(FileToVXBridge* bridge, bool flagged);
  void sendFileMovedMessage(QString message);

protected Q_SLOTS:
  void onFileChanged(const QString& path);

private:
  /** The file is there again after its watch went: watch it again and reload; true if so. */
  bool rewatchIfBack();
  /** The file has new content: clears the flag and reloads. */
  void reloadRewritten();
  /** The file stayed away: flags the item and tells the user, once. */
  void flagMissing();

  QString m_FilePath;
  bool m_Flagged = false;
  QFileSystemWatcher* m_FileWatcher = nullptr;
  /** A second look shortly after a notice that the file went. */
  QTimer* m_RecheckTimer = nullptr;
};
