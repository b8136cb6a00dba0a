#pragma once

#include "visualization/VXCoreObject.hpp"
#include "visualization/VXRepresentation.hpp"

#include <vtkAlgorithmOutput.h> // the port is held by a smart pointer subclasses read
#include <vtkSmartPointer.h>

#include <array>
#include <optional>
#include <string>

class QComboBox;
class QtKXSettings;
class vtkDataSet;
class vtkRenderWindowInteractor;

/**
 * A visual filter: one VTK algorithm as a tree item between its parent's output and its
 * children. The algorithm reads the parent's output port and its own output port feeds the
 * children, so VTK's demand-driven update carries a change downstream without copies.
 * Subclasses build their tools in setupFilter() and run the algorithm in applyFilter(); after
 * an apply the grids of the data views below follow the new bounds.
 */
class KXVTKLIB_EXPORT VXFilter : public VXCoreObject
{
  Q_OBJECT

public:
  static inline const QString k_HelpPage =
    QStringLiteral("/html/Visualization/ApplyingFilters.html");
  static inline const QString k_RepresentationAlreadyAddedTitle =
    QStringLiteral("Representation already added");
  static inline const QString k_RepresentationAlreadyAddedText = QStringLiteral(
    "A representation has already been added for viewing this filter. To add another "
    "representation for viewing this filter right click the filter item and select the "
    "representation type you'd like to add.");
  static inline const QString k_UnknownRepresentationText =
    QStringLiteral("%1 is not a valid representation type. Using %2 as the initial "
                   "representation type to add for viewing the filtered results.");

  explicit VXFilter(QObject* parent = nullptr);
  ~VXFilter() override;

  /** Writes the name, its suffix, "filter_rep_type_to_add" and "filter_should_add_rep". */
  void write(nlohmann::json& output,
             const QMap<VXAbstractViewWidget*, int>& viewIndices) const override;
  void read(const nlohmann::json& input, const QMap<int, VXAbstractViewWidget*>& views) override;
  void addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                         VXAbstractViewWidget* splitViewWidget) override;
  QIcon getIcon() override;
  /** Puts the filter's own values (writeValues) on the clipboard as JSON. */
  void copyActiveSettings() const override;
  /** Takes the values on the clipboard (readValues); a clipboard without them is reported. */
  void pasteToActiveSettings() override;

  /** Saves the current values as the defaults of this filter type (after asking). */
  virtual void writeSettings() = 0;
  /** Takes the saved defaults of this filter type. */
  virtual void readSettings() = 0;
  /** Builds the filter's tools over its input; called once the filter has a view. */
  virtual void setupFilter() = 0;
  virtual void setInputPort(vtkAlgorithmOutput* port);
  virtual vtkAlgorithmOutput* inputPort() const;
  virtual void openHelpLink() = 0;

  VXRepresentation::Type repTypeToAdd() const { return m_RepTypeToAdd; }
  bool shouldAddRep() const { return m_ShouldAddRep; }
  /** Whether applying adds a data view; the page's combo follows. */
  void setShouldAddRep(bool shouldAdd);
  /** Asks whether to save the current values as the defaults of every filter of this type. */
  bool shouldSaveAsDefaultSettings();
  /** The "Add Representation:" combo of the settings page, tied to setRepTypeToAdd. */
  QComboBox* addRepresentationTypeCombo(QWidget* parent);
  /** Every data view below this filter takes the bounds of what it now shows. */
  void updateDownstreamGridAxesBounds();
  /** The data set at the input port, brought up to date; null without an input. */
  vtkDataSet* inputDataSet() const;
  /** The input's bounds, or the unit cube without an input. */
  std::array<double, 6> inputBounds() const;
  /** The interactor of the pipeline's active render view; null without one. */
  vtkRenderWindowInteractor* activeInteractor() const;

public Q_SLOTS:
  virtual void applyFilter() = 0;
  /** Sets the data view type that applying adds, by its name ("Surface", ...). */
  void setRepTypeToAdd(QString repTypeString);

  /** The three numbers "<prefix>_x", "_y", "_z" of @p input; none unless all three are numbers. */
  static std::optional<std::array<double, 3>> ReadTriple(const nlohmann::json& input,
                                                         const std::string& prefix);
  static void WriteTriple(nlohmann::json& output, const std::string& prefix,
                          const std::array<double, 3>& values);

protected:
  /** The filter's own keys (not the frame's) as the state, the clipboard and the defaults hold
   * them. */
  virtual void writeValues(nlohmann::json& output) const = 0;
  /** Takes the keys present in @p input; missing keys keep their values. */
  virtual void readValues(const nlohmann::json& input) = 0;
  /** Opens the settings group of this filter type. */
  void beginSettingsGroup(QtKXSettings& settings);
  /**
   * The saved defaults of this filter type as the state keys hold them: @p flags as booleans,
   * @p integers as numbers and each of @p triples as its three "_x", "_y", "_z" numbers. Keys
   * that were never saved are left out.
   */
  nlohmann::json savedDefaults(const QStringList& flags, const QStringList& integers,
                               const QStringList& triples);
  /** Saves @p values (booleans and numbers by key) as this filter type's defaults. */
  void saveDefaults(const nlohmann::json& values);
  /** The page's title bar: save as defaults and help. */
  void addFilterPageTitle();
  /** Adds the data view of the chosen type once, after the first apply. */
  void addRepresentationAfterApply();

  vtkSmartPointer<vtkAlgorithmOutput> m_InputPort;
  QString m_HelpUrl;
  QPointer<QWidget> m_FilterWidget;
  QPointer<QComboBox> m_RepTypeCombo;
  VXRepresentation::Type m_RepTypeToAdd = VXRepresentation::Surface;
  bool m_ShouldAddRep = true;
  QString m_DefaultName;
};
