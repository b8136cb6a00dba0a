#pragma once

#include "visualization/VXCoreObject.hpp"
#include "visualization/VXGlobalSourcePimpl.hpp"

#include <QtCore/QStringList>

#include <array>
#include <memory>
#include <string>
#include <vector>

/**
 * An annotation object of a render view (text, ruler, arrow, ...) that stands
 * at the top of the tree beside the bridges rather than under data.
 *
 * Each render view that shows it has its own implementation object with its
 * own settings, so a split view starts as a copy and then goes its own way.
 * The settings are a JSON object whose keys are those of defaultSettings();
 * the settings page is built from fields() and edits the active view's copy.
 */
class KXVTKLIB_EXPORT VXGlobalSource : public VXCoreObject
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
  bool finalize() override;
  vtkAlgorithmOutput* outputPort() override { return nullptr; }
  void initializeSettingsWidget() override;
  void addViewWidget(VXAbstractViewWidget* view) override;
  void setVisibility(bool visible) override;
  QIcon getIcon() override;
  void copyActiveSettings() const override;
  void pasteToActiveSettings() override;
  void receivePipelineOutputReloaded() override {}
  void addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                         VXAbstractViewWidget* splitViewWidget) override;

  void setNameSuffix(int suffix) { setNameSuffixCounter(suffix); }
  /** Forgets the settings page, so that the next ask builds a new one; the old page stays with its
   * owner. */
  void releaseSettingsWidget() { m_SettingsWidget.clear(); }

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

protected:
  /** Builds the view's picture from its settings into @p impl. Returns why nothing could be shown,
   * or an empty text. */
  virtual QString build(VXGlobalSourcePimpl& impl) = 0;
  /** Three numbers of a settings value (a point or a colour). */
  static std::array<double, 3> Triple(const nlohmann::json& value);
  /** Stores positions a user dragged in the view, without rebuilding. */
  void storeInteraction(VXGlobalSourcePimpl& impl, const nlohmann::json& changes);

private:
  VXGlobalSourcePimpl* ensureImplementation(VXAbstractViewWidget* view);
  void rebuild(VXGlobalSourcePimpl& impl);
  void reportErrors();
  /** @p changes merged over @p base; false with a reason for an unknown key or a wrong kind. */
  bool merge(nlohmann::json& base, const nlohmann::json& changes, QString* error) const;
  QWidget* buildFieldEditor(const Field& field, VXAbstractViewWidget* view, QWidget* parent);

  QMap<VXAbstractViewWidget*, std::shared_ptr<VXGlobalSourcePimpl>> m_Implementations;
  nlohmann::json m_InitialSettings;
  /** Set by a read that named views, until the pipeline's first addViewWidget. */
  bool m_KeepStateViews = false;
};
