#pragma once

#include "visualization/VXBridgeObject.hpp"
#include "visualization/VXGlobalSourcePimpl.hpp"

#include <QtCore/QPointer>
#include <QtCore/QStringList>

#include <array>
#include <memory>
#include <string>
#include <vector>

class QFrame;
class QScrollArea;
class VXPipeline;

/**
 * An annotation object of a render view (text, ruler, arrow, ...) that stands
 * at the top of the tree beside the bridges rather than under data. It has no
 * data sources of its own.
 *
 * Each render view that shows it has its own implementation object with its
 * own settings, so a split view starts as a copy and then goes its own way.
 * The settings are a JSON object whose keys are those of defaultSettings();
 * the settings page is built from fields() and edits the active view's copy.
 */
class KXVTKLIB_EXPORT VXGlobalSource : public VXBridgeObject
{
  Q_OBJECT

public:
  /** One value of the settings page; its key names it in the settings and the state file. */
  struct Field
  {
    enum class Type
    {
      Text,
      MultiLineText,
      Integer,
      Real,
      Color,
      Flag,
      Choice,
      Point,
      ImageFile
    };
    std::string key;
    QString label;
    Type type = Type::Text;
    double minimum = 0.0;
    double maximum = 1.0;
    double step = 0.1;
    QStringList choices = {};
  };

  explicit VXGlobalSource(QObject* parent = nullptr);
  ~VXGlobalSource() override;

  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  /** Throws std::runtime_error on a value of the wrong kind, before anything changed. */
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  QString sourceName() override { return humanTypeName(); }
  QIcon getIcon() override;
  /** The kind of annotation as the user knows it ("Text", "Ruler", ...). */
  virtual QString humanTypeName() = 0;

  /** Follows the pipeline's active view, which the visibility and the settings page are about. */
  void setPipeline(VXPipeline* pipeline);
  VXPipeline* pipeline() const { return m_Pipeline; }
  /** Shows the source in @p view, from the settings of the views it is in already. */
  virtual void addViewWidget(VXAbstractViewWidget* view);
  /** A split of @p sourceViewWidget starts with a copy of that view's settings. */
  virtual void addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                                 VXAbstractViewWidget* splitViewWidget);
  /** The views the source is in, with its visibility in each. */
  QMap<VXAbstractViewWidget*, bool> viewWidgets() const;
  /** Visibility in the active view; false without one. */
  bool isVisible() const;
  /** Sets the visibility in the active view, adding the source to it if it is new there. */
  void setVisibility(bool visible);
  /** Takes the pictures out of every view: the source is leaving the tree. */
  void finalize();
  /** The info panel page for the active view; built on first request once a view exists. */
  QWidget* settingsWidget();
  virtual void initializeSettingsWidget();
  /** Forgets the settings page, so that the next ask builds a new one. A page that nothing shows
   * goes; one that is shown stays with whoever shows it. */
  void releaseSettingsWidget();
  virtual void copyActiveSettings() const;
  virtual void pasteToActiveSettings();

  /** Every key a view's settings have, with the value a new source starts from. */
  virtual nlohmann::json defaultSettings() const = 0;
  /** The values of the settings page, in page order. */
  virtual std::vector<Field> fields() const = 0;
  /** Places a new source around what a view shows, given as its visible bounds. */
  virtual void fitToBounds(const double bounds[6]);

  VXGlobalSourcePimpl* implementation(VXAbstractViewWidget* view) const;
  VXGlobalSourcePimpl* activeImplementation() const;
  /** The settings a view without an implementation starts from. */
  nlohmann::json initialSettings() const;
  /** Changes some keys of one view's settings and rebuilds its picture. Unknown keys and values of
   * the wrong kind are refused (false, with @p error set); numbers are kept to the page's range. */
  bool setSettings(VXAbstractViewWidget* view, const nlohmann::json& changes,
                   QString* error = nullptr);
  /** Changes the starting settings of views still to come (a new source fitted to its view). */
  bool setInitialSettings(const nlohmann::json& changes, QString* error = nullptr);

Q_SIGNALS:
  void settingsChanged(VXAbstractViewWidget* view);
  void requestRender();
  void requestRenderAll();
  /** The active view changed; @p isEnabled tells whether the source is in the new one. */
  void enabledDisabledStateChanged(VXGlobalSource* source, bool isEnabled);

protected:
  /** Builds the view's picture from its settings into @p impl. Returns why nothing could be shown,
   * or an empty text. */
  virtual QString build(VXGlobalSourcePimpl& impl) = 0;
  /** Three numbers of a settings value (a point or a colour). */
  static std::array<double, 3> Triple(const nlohmann::json& value);
  /** Stores positions a user dragged in the view, without rebuilding. */
  void storeInteraction(VXGlobalSourcePimpl& impl, const nlohmann::json& changes);

  QPointer<QWidget> m_SettingsWidget;

private:
  void activeViewChanged(VXAbstractViewWidget* previousActiveView,
                         VXAbstractViewWidget* currentActiveView);
  void reportPasteFailure(const QString& reason) const;
  VXGlobalSourcePimpl* ensureImplementation(VXAbstractViewWidget* view);
  void rebuild(VXGlobalSourcePimpl& impl);
  void reportErrors();
  /** @p changes merged over @p base; false with a reason for an unknown key or a wrong kind. */
  bool merge(nlohmann::json& base, const nlohmann::json& changes, QString* error) const;
  QWidget* buildFieldEditor(const Field& field, VXAbstractViewWidget* view, QWidget* parent);

  QMap<VXAbstractViewWidget*, std::shared_ptr<VXGlobalSourcePimpl>> m_Implementations;
  nlohmann::json m_InitialSettings;
  VXPipeline* m_Pipeline = nullptr;
  QMetaObject::Connection m_ActiveViewConnection;
  /** Set by a read that named views, until the pipeline's first addViewWidget. */
  bool m_KeepStateViews = false;
};
