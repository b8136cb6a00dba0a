#pragma once

#include "visualization/VXRepresentationPimpl.hpp"

#include <vtkActor.h>
#include <vtkMapper.h>
#include <vtkOutlineFilter.h>
#include <vtkPolyDataMapper.h>
#include <vtkQuadricClustering.h>

#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtWidgets/QWidget> // control<W>() searches the page

class KXColorButton;
class QCheckBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;
class QVBoxLayout;
class VXLookupTable;
class vtkActor;
class vtkMapper;
class vtkOutlineFilter;
class vtkPolyDataMapper;
class vtkQuadricClustering;

/**
 * The outline data view in one render view: the bounding box of the parent's
 * data drawn as lines. It is also the base of the points, wireframe and surface
 * implementations, which replace the outline filter by the data's own geometry
 * and keep the actor, its styling (solid colour, opacity, edges, line size,
 * tubes) and the settings page sections built here.
 */
class KXVTKLIB_EXPORT VXOutlineRepPimpl : public VXRepresentationPimpl
{
  Q_OBJECT

public:
  VXOutlineRepPimpl(VXAbstractViewWidget* view, VXRepresentation* owner);
  ~VXOutlineRepPimpl() override;

  bool initialize(vtkAlgorithmOutput* port) override;
  bool finalize() override;
  void write(nlohmann::json& output) const override;
  void read(const nlohmann::json& input) override;
  vtkAlgorithmOutput* outputPort() override;
  vtkAlgorithmOutput* inputPort() override;
  void buildSettingsPage() override;
  void connectParentColorSignals(bool trigger) override;
  void disconnectParentColorSignals() override;
  void bounds(double bounds[6]) override;
  bool isVisible() const override { return m_Visible; }
  void setVisibility(bool visible) override;
  void copySettingsToClipboard() override;
  void copyFrom(VXRepresentationPimpl* other) override;
  void pasteSettingsFromClipboard() override;
  void saveDefaultSettings() override;
  void loadDefaultSettings() override;
  void openHelp() override;
  void setHighlighted(bool highlighted) override;
  void updateToolTips() override;
  void useFullGeometry() override {}
  void useDecimatedGeometry() override {}

  virtual void setMapper(vtkMapper* mapper);
  virtual vtkMapper* mapper() const;
  virtual vtkActor* actor() const;

  vtkActor* highlightActor() const { return m_HighlightActor; }
  QColor solidColor() const { return m_SolidColor; }
  /** The opacity as a fraction in [0, 1]. */
  double opacity() const { return m_Opacity; }
  bool edgeVisibility() const { return m_EdgeVisibility; }
  int lineSize() const { return m_LineSize; }
  bool renderLinesAsTubes() const { return m_RenderLinesAsTubes; }
  bool isInitialized() const override { return m_Initialized; }
  /** A control of the settings page by object name (for hosts and tests). */
  template<typename W>
  W* control(const QString& name) const
  {
    return m_SettingsWidget != nullptr ? m_SettingsWidget->template findChild<W*>(name) : nullptr;
  }

public Q_SLOTS:
  void receivePipelineOutputReloaded() override {}
  void onSyncColorMapToParentGeometry() override;
  void applyTransform() override;
  void decimateGeometry() override {}
  void updateHistogram() override {}
  virtual void onDetachColorSettings(bool checked);
  void setSolidColor(QColor newColor);
  /** Takes a percentage; the stored opacity is clamped to [0, 1]. */
  void setOpacity(int alpha);
  void lineSizeChanged();
  void lineSizeEdited(QString text);
  void setEdgeVisibility(bool visible);
  void setRenderLinesAsTubes(bool tubes);

protected:
  /** Pushes solid colour, opacity, edges, line size and tubes to the actor's property. */
  void applyActorProperties();
  /** Sets the page's controls from the fields after a paste or a read. */
  virtual void syncControls();
  /** The form of a page section ("Coloring", "Styling", "Annotations", "Transform", "Decimation").
   */
  QFormLayout* sectionForm(const QString& title);
  /** The parent data source, or null. */
  class VXDataSource* parentDataSource() const;
  void loadOutlineDefaults(QtKXSettings& settings);
  void saveOutlineDefaults(QtKXSettings& settings) const;

  vtkSmartPointer<vtkActor> m_Actor;
  vtkSmartPointer<vtkMapper> m_Mapper;
  vtkSmartPointer<vtkOutlineFilter> m_OutlineFilter;
  vtkSmartPointer<vtkActor> m_HighlightActor;
  vtkSmartPointer<vtkPolyDataMapper> m_HighlightMapper;
  vtkSmartPointer<vtkQuadricClustering> m_QuadricClustering;
  double m_Opacity = 1.0;
  QColor m_SolidColor = Qt::white;
  QColor m_SavedSolidColor = Qt::white;
  bool m_EdgeVisibility = true;
  int m_LineSize = 1;
  bool m_RenderLinesAsTubes = false;
  bool m_Initialized = false;
  bool m_Highlighted = false;
  QString m_HelpAnchor = "#outline-representation";
  QList<QMetaObject::Connection> m_ParentColorConnections;

  QPointer<QWidget> m_PageContent;
  QPointer<QVBoxLayout> m_PageLayout;
  QMap<QString, QPointer<QFormLayout>> m_Sections;
  QPointer<QCheckBox> m_DetachColorCheckBox;
  QPointer<QPushButton> m_DataSourceButton;
  QPointer<KXColorButton> m_SolidColorButton;
  QPointer<QSlider> m_OpacitySlider;
  QPointer<QCheckBox> m_EdgesCheckBox;
  QPointer<QLabel> m_LineSizeLabel;
  QPointer<QLineEdit> m_LineSizeEdit;
  QPointer<QCheckBox> m_TubesCheckBox;
  QPointer<QCheckBox> m_DecimationCheckBox;
};
