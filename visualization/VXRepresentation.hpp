#pragma once

#include "visualization/VXCoreObject.hpp"

#include <QtCore/QMap>

#include <cstdint>
#include <functional>

class VXPipeline;

/**
 * A data view: a leaf of the pipeline tree showing its parent's output in the
 * render views, with one implementation per view. This is the frame every
 * data view class derives from, and the registry through which the pipeline
 * creates them by type.
 */
class KXVTKLIB_EXPORT VXRepresentation : public VXCoreObject
{
  Q_OBJECT

public:
  enum Type : std::uint32_t
  {
    None = 0,
    Outline = 1,
    Points = 2,
    Wireframe = 3,
    Surface = 4,
    ImageSlice = 5,
    Volume = 6,
    Glyph = 7
  };

  /** User strings of the types, both ways. */
  static const QMap<QString, Type> k_RepresentationStringToType;
  static const QMap<Type, QString> k_RepresentationTypeToString;

  using Factory = std::function<VXRepresentation*(VXPipeline*)>;
  /** Makes the data view class of a type available to the pipeline. */
  static void RegisterType(Type type, Factory factory);
  /** A new data view of the type, or null when no class is registered for it. */
  static VXRepresentation* Create(Type type, VXPipeline* pipeline);
  static bool IsRegistered(Type type);

  explicit VXRepresentation(VXPipeline* pipeline, const QString& defaultName, QObject* parent = nullptr);
  ~VXRepresentation() override;

  virtual Type type() const = 0;
  /** Creates the per-view implementations for the views this item knows, over the port. */
  virtual void initializeImplementations(vtkAlgorithmOutput* inputPort) = 0;
  /**
   * Adds an implementation in a view. With a source view the new one copies
   * the source's settings (a split). False when none was added.
   */
  virtual bool addViewInstance(VXAbstractViewWidget* sourceView, VXAbstractViewWidget* view, vtkAlgorithmOutput* inputPort,
                               bool initialize) = 0;
  virtual void updateDataSetInfo() = 0;
  virtual void initializeViewWidgetSplits(VXAbstractViewWidget* sourceView, bool copy);

  void setParentSource(VXCoreObject* parent);
  VXCoreObject* parentSource() const { return m_ParentSource; }
  QString defaultName() const { return m_DefaultName; }

private:
  VXCoreObject* m_ParentSource = nullptr;
  QString m_DefaultName;
};
