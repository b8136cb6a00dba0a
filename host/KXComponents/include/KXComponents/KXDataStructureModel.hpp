#pragma once

#include "KXComponents/kxcomponents_export.h"

#include <kxcore/DataPath.hpp>
#include <kxcore/DataStructure.hpp>

#include <QtCore/QAbstractItemModel>

#include <memory>

/**
 * A read-only, one-column item model of a DataStructure's tree: one row per
 * object under each group, in ascending identifier order, showing the object's
 * name. An object held by several groups appears under each of them. The
 * model keeps the structure alive through a shared pointer; after the
 * structure changes, call setDataStructure (or refresh) to rebuild the rows.
 */
class KXCOMPONENTS_EXPORT KXDataStructureModel : public QAbstractItemModel
{
  Q_OBJECT

public:
  /** Extra data roles. */
  enum Roles
  {
    IdRole = Qt::UserRole + 1, ///< the object's identifier (qulonglong)
    TypeNameRole,              ///< the object's type name, e.g. "ImageGeom"
    PathRole                   ///< the row's path as text, "/"-separated
  };

  explicit KXDataStructureModel(QObject* parent = nullptr);
  ~KXDataStructureModel() override;

  std::shared_ptr<kx::core::DataStructure> getDataStructure() const;
  /** Shows that structure (null shows nothing); resets the model. */
  void setDataStructure(std::shared_ptr<kx::core::DataStructure> dataStructure);
  /** Rebuilds the rows from the current structure. */
  void refresh();

  /** The path of the object a row stands for; empty for an invalid index. */
  kx::core::DataPath dataPath(const QModelIndex& index) const;
  /** The index of the row reached by that path, or an invalid index. */
  QModelIndex indexFromPath(const kx::core::DataPath& path) const;

  QModelIndex index(int row, int column, const QModelIndex& parent = QModelIndex()) const override;
  QModelIndex parent(const QModelIndex& child) const override;
  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

private:
  struct Node;
  void buildNodes();

  std::shared_ptr<kx::core::DataStructure> m_DataStructure;
  std::unique_ptr<Node> m_Root;
};
