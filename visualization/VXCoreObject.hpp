#pragma once

#include "KXVtkLib_export.h"

#include <nlohmann/json.hpp>

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtGui/QIcon>

class QFrame;
class QScrollArea;
class QWidget;
class KXIconPushButton;
class VXAbstractViewWidget;
class VXLookupTable;
class VXPipeline;
class vtkAlgorithmOutput;

// complete types for the signals' meta-type information
#include <vtkDataSet.h>
#include <vtkPolyData.h>
#include <vtkUnstructuredGrid.h>

// views are named by pointer in signals; the meta-object code needs the full type
Q_MOC_INCLUDE("visualization/QtWidgets/VXAbstractViewWidget.hpp")

/**
 * Base of every item below a bridge in a visualization pipeline: data sources,
 * filters and data views. The QObject parent chain is the tree. An item owns
 * its identity (base name and suffix counter, path text), its visibility in
 * each render view, its settings page and its part of the state file.
 */
class KXVTKLIB_EXPORT VXCoreObject : public QObject
{
  Q_OBJECT

public:
  explicit VXCoreObject(QObject* parent = nullptr);
  ~VXCoreObject() override;

  virtual void write(nlohmann::json& output,
                     const QMap<VXAbstractViewWidget*, int>& viewIndices) const;
  virtual void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views);
  /** True when every view this item knows still exists. */
  virtual bool finalize();
  virtual QString humanTypeName() = 0;
  /** The class name as the state file and the settings store know it. */
  virtual QString typeName() = 0;
  virtual void setBaseName(const QString& name);
  virtual vtkAlgorithmOutput* outputPort() = 0;
  virtual VXLookupTable* lookupTable();
  /** The info panel page; built on first request once a view exists. */
  virtual QWidget* settingsWidget();
  virtual void initializeSettingsWidget() = 0;
  virtual void addSettingsWidgetTitle(KXIconPushButton* primaryButton,
                                      KXIconPushButton* secondaryButton);
  virtual void addViewWidget(VXAbstractViewWidget* view);
  /** Visibility in the active view. */
  virtual bool isVisible() const;
  /** Sets the visibility in the active view, adding the view if the item is new to it. */
  virtual void setVisibility(bool visible);
  virtual QIcon getIcon() = 0;
  virtual void copyActiveSettings() const = 0;
  virtual void pasteToActiveSettings() = 0;
  virtual void updatePath();
  virtual void receivePipelineOutputReloaded() = 0;
  virtual void addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                                 VXAbstractViewWidget* splitViewWidget) = 0;
  virtual void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                 VXAbstractViewWidget* currentActiveView);

  QString baseName() const { return m_BaseName; }
  /** The base name, then a blank and the suffix counter when it is above 0. */
  QString name() const;
  /** The names of the item and its ancestors from the root, joined by the path delimiter. */
  QString pathName() const;
  int getNameSuffixCounter() const { return m_NameSuffixCounter; }
  void setNameSuffixCounter(int counter);
  QString getPathDelimeter() const { return m_PathDelimeter; }
  void setPathDelimeter(const QString& delimiter) { m_PathDelimeter = delimiter; }
  void setPipeline(VXPipeline* pipeline);
  VXPipeline* pipeline() const { return m_Pipeline; }
  QMap<VXAbstractViewWidget*, bool> viewWidgets() const { return m_ViewWidgets; }
  bool autoReloadFlagged() const { return m_AutoReloadFlagged; }
  void setFlagAutoReload(bool flagged);

Q_SIGNALS:
  void requestRender();
  void requestRenderAll();
  void requestUpdate(QString dataSetItemPathName, vtkDataSet* dataset);
  void requestUnstructuredGridUpdate(QString dataSetItemPathName, vtkUnstructuredGrid* dataset);
  void requestPolyDataUpdate(QString dataSetItemPathName, vtkPolyData* dataset);
  void requestClear();
  void autoReloadFlagChanged(bool flagged);
  void enabledDisabledStateChanged(VXCoreObject* representation, bool isEnabled);
  void pathChanged(QString pathName);
  void settingsWidgetVisibilityButtonClicked(bool checked);

protected:
  /** The clipboard's text as a settings object; null (after telling the user why) when it holds
   * none. */
  nlohmann::json clipboardSettings() const;
  /** Tells the user why a paste into this item was refused. */
  void reportPasteFailure(const QString& reason) const;

  QPointer<QWidget> m_SettingsWidget;
  QPointer<QFrame> m_SettingsTitleFrame;
  QPointer<QScrollArea> m_SettingsScrollArea;
  QMap<VXAbstractViewWidget*, bool> m_ViewWidgets;
  VXPipeline* m_Pipeline = nullptr;
  QString m_BaseName;
  int m_NameSuffixCounter = 0;
  QString m_PathDelimeter = " > ";
  bool m_AutoReloadFlagged = false;

private:
  QMetaObject::Connection m_ActiveViewConnection;
};
