#include "visualization/VXGlobalSource.hpp"

#include "utils/KXVtkModuleUtils.hpp"
#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"
#include "visualization/VXPipeline.hpp"
#include "visualization/VXUserPrompt.hpp"

#include <KXComponents/KXColorButton.hpp>
#include <KXComponents/QElidedLabel.hpp>

#include <QtCore/QDebug>
#include <QtCore/QFileInfo>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDoubleSpinBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QSpinBox>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace
{
constexpr const char* k_ImplementationsKey = "source_view_implementations";

QColor toColor(const nlohmann::json& value)
{
  return QColor::fromRgbF(value.at(0).get<float>(), value.at(1).get<float>(),
                          value.at(2).get<float>());
}

nlohmann::json fromColor(const QColor& color)
{
  return nlohmann::json::array({ color.redF(), color.greenF(), color.blueF() });
}

bool sameKind(const nlohmann::json& a, const nlohmann::json& b)
{
  if (a.is_number() || b.is_number())
    return a.is_number() && b.is_number();
  if (a.is_array() || b.is_array())
  {
    if (!a.is_array() || !b.is_array() || a.size() != b.size())
      return false;
    return std::all_of(b.begin(), b.end(), [](const nlohmann::json& v) { return v.is_number(); });
  }
  return a.type() == b.type();
}

QString kindName(const nlohmann::json& value)
{
  if (value.is_array())
    return QString("a list of %1 numbers").arg(value.size());
  if (value.is_number())
    return "a number";
  if (value.is_boolean())
    return "true or false";
  return "a text";
}
} // namespace

VXGlobalSource::VXGlobalSource(QObject* parent)
  : VXBridgeObject(parent)
{
}

VXGlobalSource::~VXGlobalSource()
{
  m_Implementations.clear();
  // a page nobody took is still this source's
  if (m_SettingsWidget && m_SettingsWidget->parent() == nullptr)
    delete m_SettingsWidget;
}

void VXGlobalSource::setPipeline(VXPipeline* pipeline)
{
  if (m_ActiveViewConnection)
    disconnect(m_ActiveViewConnection);
  m_Pipeline = pipeline;
  if (pipeline != nullptr)
    m_ActiveViewConnection =
      connect(pipeline, &VXPipeline::activeViewChanged, this, &VXGlobalSource::activeViewChanged);
  // what a state file's settings could not show is told now that there is an output to tell it in
  reportErrors();
}

void VXGlobalSource::activeViewChanged(VXAbstractViewWidget* previousActiveView,
                                       VXAbstractViewWidget* currentActiveView)
{
  if (previousActiveView == currentActiveView)
    return;
  Q_EMIT enabledDisabledStateChanged(this, implementation(currentActiveView) != nullptr);
}

void VXGlobalSource::fitToBounds(const double[6]) {}

std::array<double, 3> VXGlobalSource::Triple(const nlohmann::json& value)
{
  return { value.at(0).get<double>(), value.at(1).get<double>(), value.at(2).get<double>() };
}

QIcon VXGlobalSource::getIcon()
{
  // the tree shows its generic item icon
  return {};
}

VXGlobalSourcePimpl* VXGlobalSource::implementation(VXAbstractViewWidget* view) const
{
  auto found = m_Implementations.constFind(view);
  return found != m_Implementations.constEnd() ? found.value().get() : nullptr;
}

VXGlobalSourcePimpl* VXGlobalSource::activeImplementation() const
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  return view != nullptr ? implementation(view) : nullptr;
}

nlohmann::json VXGlobalSource::initialSettings() const
{
  return m_InitialSettings.is_object() ? m_InitialSettings : defaultSettings();
}

bool VXGlobalSource::merge(nlohmann::json& base, const nlohmann::json& changes,
                           QString* error) const
{
  auto fail = [error](const QString& text)
  {
    if (error != nullptr)
      *error = text;
    return false;
  };
  if (!changes.is_object())
    return fail("the settings must be a JSON object");
  const std::vector<Field> pageFields = fields();
  nlohmann::json merged = base;
  for (auto iter = changes.begin(); iter != changes.end(); ++iter)
  {
    if (!merged.contains(iter.key()))
      return fail(QString("unknown setting '%1'").arg(QString::fromStdString(iter.key())));
    nlohmann::json& target = merged[iter.key()];
    if (!sameKind(target, iter.value()))
      return fail(QString("the setting '%1' must be %2")
                    .arg(QString::fromStdString(iter.key()), kindName(target)));
    nlohmann::json value = iter.value();
    // values beyond what the page offers would only reach VTK as nonsense (a font of a million
    // points)
    auto field = std::find_if(pageFields.begin(), pageFields.end(),
                              [&](const Field& f) { return f.key == iter.key(); });
    if (field != pageFields.end())
    {
      if (field->type == Field::Type::Integer)
        value = static_cast<int>(
          std::lround(std::clamp(value.get<double>(), field->minimum, field->maximum)));
      else if (field->type == Field::Type::Real)
        value = std::clamp(value.get<double>(), field->minimum, field->maximum);
      else if (field->type == Field::Type::Color)
        for (auto& channel : value)
          channel = std::clamp(channel.get<double>(), 0.0, 1.0);
      else if (field->type == Field::Type::Point)
        for (auto& coordinate : value)
          coordinate = std::clamp(coordinate.get<double>(), -1e12, 1e12);
    }
    target = value;
  }
  base = std::move(merged);
  return true;
}

bool VXGlobalSource::setSettings(VXAbstractViewWidget* view, const nlohmann::json& changes,
                                 QString* error)
{
  VXGlobalSourcePimpl* impl = implementation(view);
  if (impl == nullptr)
  {
    if (error != nullptr)
      *error = "the source is not in that view";
    return false;
  }
  if (!merge(impl->settings(), changes, error))
    return false;
  rebuild(*impl);
  Q_EMIT settingsChanged(view);
  return true;
}

bool VXGlobalSource::setInitialSettings(const nlohmann::json& changes, QString* error)
{
  nlohmann::json initial = initialSettings();
  if (!merge(initial, changes, error))
    return false;
  m_InitialSettings = std::move(initial);
  return true;
}

void VXGlobalSource::storeInteraction(VXGlobalSourcePimpl& impl, const nlohmann::json& changes)
{
  if (merge(impl.settings(), changes, nullptr))
    Q_EMIT settingsChanged(impl.view());
}

VXGlobalSourcePimpl* VXGlobalSource::ensureImplementation(VXAbstractViewWidget* view)
{
  if (view == nullptr)
    return nullptr;
  if (VXGlobalSourcePimpl* existing = implementation(view))
    return existing;
  // a view that joins later shows what the others show
  nlohmann::json start =
    m_Implementations.isEmpty() ? initialSettings() : m_Implementations.first()->settings();
  auto impl = std::make_shared<VXGlobalSourcePimpl>(view, std::move(start));
  m_Implementations.insert(view, impl);
  auto forget = [this, view]() { m_Implementations.remove(view); };
  connect(view, &VXAbstractViewWidget::closingView, this, forget);
  connect(view, &QObject::destroyed, this, forget);
  rebuild(*impl);
  return impl.get();
}

void VXGlobalSource::rebuild(VXGlobalSourcePimpl& impl)
{
  impl.clear();
  impl.setError(build(impl));
  impl.setVisible(impl.isVisible());
  reportErrors();
  Q_EMIT requestRender();
}

void VXGlobalSource::reportErrors()
{
  // a source read from a state file has no pipeline yet: it tells once it is added
  if (m_Pipeline == nullptr)
    return;
  for (const auto& impl : std::as_const(m_Implementations))
  {
    if (impl->error().isEmpty() || impl->errorReported())
      continue;
    impl->setErrorReported();
    Q_EMIT m_Pipeline->sendOutputMessage(impl->error());
  }
}

void VXGlobalSource::addViewWidget(VXAbstractViewWidget* view)
{
  if (view == nullptr)
    return;
  if (m_KeepStateViews)
  {
    m_KeepStateViews = false;
    if (implementation(view) == nullptr)
      return;
  }
  connect(view, &VXAbstractViewWidget::viewWidgetCreated, this, &VXGlobalSource::addViewWidgetCopy,
          Qt::UniqueConnection);
  if (VXVisualizationWidget* renderWidget = view->getVisualizationWidget())
    connect(this, &VXGlobalSource::requestRender, renderWidget, &VXVisualizationWidget::render,
            Qt::UniqueConnection);
  // a view the source is in already keeps its settings and visibility
  ensureImplementation(view);
  reportErrors();
  Q_EMIT requestRender();
}

QMap<VXAbstractViewWidget*, bool> VXGlobalSource::viewWidgets() const
{
  QMap<VXAbstractViewWidget*, bool> views;
  for (auto iter = m_Implementations.constBegin(); iter != m_Implementations.constEnd(); ++iter)
    views.insert(iter.key(), iter.value()->isVisible());
  return views;
}

bool VXGlobalSource::isVisible() const
{
  const VXGlobalSourcePimpl* impl = activeImplementation();
  return impl != nullptr && impl->isVisible();
}

void VXGlobalSource::setVisibility(bool visible)
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  if (view == nullptr)
    return;
  if (implementation(view) == nullptr)
    addViewWidget(view);
  if (VXGlobalSourcePimpl* impl = implementation(view))
  {
    impl->setVisible(visible);
    Q_EMIT requestRender();
  }
}

void VXGlobalSource::addViewWidgetCopy(VXAbstractViewWidget* sourceViewWidget,
                                       VXAbstractViewWidget* splitViewWidget)
{
  VXGlobalSourcePimpl* original = implementation(sourceViewWidget);
  if (original == nullptr || splitViewWidget == nullptr || original->view() == splitViewWidget)
    return;
  const nlohmann::json copied = original->settings();
  const bool visible = original->isVisible();
  addViewWidget(splitViewWidget);
  if (VXGlobalSourcePimpl* copy = implementation(splitViewWidget))
  {
    copy->settings() = copied;
    copy->setVisible(visible);
    rebuild(*copy);
  }
}

void VXGlobalSource::finalize()
{
  // the pictures leave the views now, not at the deferred delete
  m_Implementations.clear();
}

void VXGlobalSource::write(nlohmann::json& output,
                           const QMap<VXAbstractViewWidget*, int>& viewIndices) const
{
  output["core_object_name"] = m_BaseName.toStdString();
  output["core_object_name_suffix"] = m_NameSuffixCounter;
  // a top-level item names one window, the first it shows in; each view's entry below says the rest
  // in window order, so that the same scene always writes the same document
  QMap<int, nlohmann::json> byIndex;
  for (auto iter = m_Implementations.constBegin(); iter != m_Implementations.constEnd(); ++iter)
  {
    if (!viewIndices.contains(iter.key()))
      continue;
    const int index = viewIndices.value(iter.key());
    nlohmann::json entry = iter.value()->settings();
    entry["render_window_index"] = index;
    entry["core_object_visibility"] = iter.value()->isVisible();
    byIndex.insert(index, std::move(entry));
  }
  output["render_window_index"] = byIndex.isEmpty() ? -1 : byIndex.firstKey();
  nlohmann::json implementations = nlohmann::json::array();
  for (const nlohmann::json& entry : std::as_const(byIndex))
    implementations.push_back(entry);
  output[k_ImplementationsKey] = std::move(implementations);
}

void VXGlobalSource::read(const nlohmann::json& input,
                          const QMap<int, VXAbstractViewWidget*>& views)
{
  if (!input.is_object())
    return;
  auto fail = [this](const QString& error)
  {
    throw std::runtime_error(
      QString("%1 '%2': %3").arg(humanTypeName(), m_BaseName, error).toStdString());
  };
  // everything is checked before anything changes: a bad value leaves the source as it was
  struct ViewEntry
  {
    VXAbstractViewWidget* view;
    nlohmann::json settings;
    bool visible;
  };
  QList<ViewEntry> perView;
  if (input.contains(k_ImplementationsKey))
  {
    const nlohmann::json& entries = input.at(k_ImplementationsKey);
    if (!entries.is_array())
      fail(QString("'%1' must be a list").arg(k_ImplementationsKey));
    for (const auto& entry : entries)
    {
      if (!entry.is_object() || !entry.contains("render_window_index"))
        continue;
      if (!entry.at("render_window_index").is_number_integer())
        fail("the setting 'render_window_index' must be a whole number");
      VXAbstractViewWidget* view =
        views.value(KXVtkModule::utils::StateInt(entry.at("render_window_index")), nullptr);
      nlohmann::json changes = entry;
      changes.erase("render_window_index");
      bool visible = true;
      if (changes.contains("core_object_visibility"))
      {
        if (!changes.at("core_object_visibility").is_boolean())
          fail("the setting 'core_object_visibility' must be true or false");
        visible = changes.at("core_object_visibility").get<bool>();
        changes.erase("core_object_visibility");
      }
      nlohmann::json settings = initialSettings();
      QString error;
      if (!merge(settings, changes, &error))
        fail(error);
      if (view != nullptr)
        perView.append({ view, std::move(settings), visible });
    }
  }
  else if (input.contains("render_window_index") &&
           input.at("render_window_index").is_number_integer())
  {
    // a file that only names the window: the source starts there as a new one would
    const int index = KXVtkModule::utils::StateInt(input.at("render_window_index"));
    VXAbstractViewWidget* view =
      index == -1 ? (views.isEmpty() ? nullptr : views.first()) : views.value(index, nullptr);
    if (view != nullptr)
      perView.append({ view, initialSettings(), true });
  }
  if (input.contains("core_object_name") && !input.at("core_object_name").is_string())
    fail("the setting 'core_object_name' must be a text");
  if (input.contains("core_object_name_suffix") &&
      !input.at("core_object_name_suffix").is_number_integer())
    fail("the setting 'core_object_name_suffix' must be a whole number");
  const QString baseName =
    input.contains("core_object_name")
      ? QString::fromStdString(input.at("core_object_name").get<std::string>())
      : m_BaseName;
  const int suffix =
    input.contains("core_object_name_suffix")
      ? std::max(0, KXVtkModule::utils::StateInt(input.at("core_object_name_suffix")))
      : m_NameSuffixCounter;
  setName(baseName, suffix);
  for (const ViewEntry& entry : perView)
  {
    addViewWidget(entry.view);
    VXGlobalSourcePimpl* impl = implementation(entry.view);
    impl->settings() = entry.settings;
    impl->setVisible(entry.visible);
    rebuild(*impl);
  }
  // the views the file named are the source's views: the pipeline adds it to no other
  m_KeepStateViews = !perView.isEmpty();
}

void VXGlobalSource::copyActiveSettings() const
{
  VXGlobalSourcePimpl* impl = activeImplementation();
  QClipboard* clipboard = QGuiApplication::clipboard();
  if (impl == nullptr || clipboard == nullptr)
    return;
  nlohmann::json copied = impl->settings();
  copied["item_type"] = const_cast<VXGlobalSource*>(this)->typeName().toStdString();
  clipboard->setText(QString::fromStdString(copied.dump(2)));
}

void VXGlobalSource::pasteToActiveSettings()
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  if (implementation(view) == nullptr)
    return;
  nlohmann::json pasted = KXVtkModule::utils::ClipboardSettings();
  if (pasted.is_null())
  {
    reportPasteFailure("the clipboard does not hold the settings of a visualization item.");
    return;
  }
  if (!pasted.contains("item_type") || pasted.at("item_type") != typeName().toStdString())
  {
    reportPasteFailure(
      QString("the clipboard does not hold the settings of a %1.").arg(humanTypeName().toLower()));
    return;
  }
  pasted.erase("item_type");
  QString error;
  if (!setSettings(view, pasted, &error))
    reportPasteFailure(error + ".");
}

void VXGlobalSource::reportPasteFailure(const QString& reason) const
{
  const QString text = QString("Cannot paste settings to %1: %2").arg(name(), reason);
  if (m_Pipeline != nullptr)
    Q_EMIT m_Pipeline->sendOutputMessage(text);
  else
    qWarning().noquote() << text;
}

QWidget* VXGlobalSource::buildFieldEditor(const Field& field, VXAbstractViewWidget* view,
                                          QWidget* parent)
{
  VXGlobalSourcePimpl* impl = implementation(view);
  const nlohmann::json& value = impl->settings().at(field.key);
  const std::string key = field.key;
  QPointer<VXAbstractViewWidget> target(view);
  auto apply = [this, target, key](const nlohmann::json& newValue)
  { setSettings(target, nlohmann::json{ { key, newValue } }); };
  const QString name = QString::fromStdString(key);
  switch (field.type)
  {
    case Field::Type::Text:
    {
      auto* edit = new QLineEdit(QString::fromStdString(value.get<std::string>()), parent);
      connect(edit, &QLineEdit::editingFinished, this,
              [edit, apply]() { apply(edit->text().toStdString()); });
      edit->setObjectName(name);
      return edit;
    }
    case Field::Type::MultiLineText:
    {
      auto* edit = new QPlainTextEdit(QString::fromStdString(value.get<std::string>()), parent);
      edit->setMaximumHeight(64);
      connect(edit, &QPlainTextEdit::textChanged, this,
              [edit, apply]() { apply(edit->toPlainText().toStdString()); });
      edit->setObjectName(name);
      return edit;
    }
    case Field::Type::Integer:
    {
      auto* spin = new QSpinBox(parent);
      spin->setRange(static_cast<int>(field.minimum), static_cast<int>(field.maximum));
      spin->setValue(KXVtkModule::utils::StateInt(value));
      connect(spin, &QSpinBox::valueChanged, this, [apply](int v) { apply(v); });
      spin->setObjectName(name);
      return spin;
    }
    case Field::Type::Real:
    {
      auto* spin = new QDoubleSpinBox(parent);
      spin->setDecimals(3);
      spin->setRange(field.minimum, field.maximum);
      spin->setSingleStep(field.step);
      spin->setValue(value.get<double>());
      connect(spin, &QDoubleSpinBox::valueChanged, this, [apply](double v) { apply(v); });
      spin->setObjectName(name);
      return spin;
    }
    case Field::Type::Color:
    {
      auto* button = new KXColorButton(toColor(value), parent);
      VXUserPrompt::routeColorButton(button, QString("Select %1").arg(field.label));
      connect(button, &KXColorButton::changedColor, this,
              [apply](const QColor& color) { apply(fromColor(color)); });
      button->setObjectName(name);
      return button;
    }
    case Field::Type::Flag:
    {
      auto* box = new QCheckBox(parent);
      box->setChecked(value.get<bool>());
      connect(box, &QCheckBox::toggled, this, [apply](bool on) { apply(on); });
      box->setObjectName(name);
      return box;
    }
    case Field::Type::Choice:
    {
      auto* combo = new QComboBox(parent);
      combo->addItems(field.choices);
      combo->setCurrentText(QString::fromStdString(value.get<std::string>()));
      connect(combo, &QComboBox::currentTextChanged, this,
              [apply](const QString& text) { apply(text.toStdString()); });
      combo->setObjectName(name);
      return combo;
    }
    case Field::Type::Point:
    {
      auto* row = new QWidget(parent);
      row->setObjectName(name);
      auto* layout = new QHBoxLayout(row);
      layout->setContentsMargins(0, 0, 0, 0);
      QList<QDoubleSpinBox*> spins;
      for (std::size_t i = 0; i < value.size(); i++)
      {
        auto* spin = new QDoubleSpinBox(row);
        spin->setObjectName(QString("%1_%2").arg(name).arg(i));
        spin->setDecimals(3);
        spin->setRange(-1e9, 1e9);
        spin->setSingleStep(field.step);
        spin->setValue(value.at(i).get<double>());
        layout->addWidget(spin);
        spins.append(spin);
      }
      for (QDoubleSpinBox* spin : spins)
        connect(spin, &QDoubleSpinBox::valueChanged, this,
                [spins, apply]()
                {
                  nlohmann::json point = nlohmann::json::array();
                  for (QDoubleSpinBox* each : spins)
                    point.push_back(each->value());
                  apply(point);
                });
      return row;
    }
    case Field::Type::ImageFile:
    {
      auto* row = new QWidget(parent);
      auto* layout = new QHBoxLayout(row);
      layout->setContentsMargins(0, 0, 0, 0);
      auto* edit = new QLineEdit(QString::fromStdString(value.get<std::string>()), row);
      edit->setObjectName(name);
      auto* browse = new QPushButton("Browse...", row);
      layout->addWidget(edit, 1);
      layout->addWidget(browse);
      connect(edit, &QLineEdit::editingFinished, this,
              [edit, apply]() { apply(edit->text().toStdString()); });
      connect(browse, &QPushButton::clicked, this,
              [edit, apply]()
              {
                const QString path = VXUserPrompt::getOpenFileName(
                  edit, "Open Image", "Images (*.png *.jpg *.jpeg *.bmp *.tif *.tiff)");
                if (path.isEmpty())
                  return;
                edit->setText(path);
                apply(path.toStdString());
              });
      return row;
    }
  }
  return nullptr;
}

void VXGlobalSource::initializeSettingsWidget()
{
  VXAbstractViewWidget* view = m_Pipeline != nullptr ? m_Pipeline->activeViewWidget() : nullptr;
  if (implementation(view) == nullptr)
    return;
  releaseSettingsWidget();
  auto* titleFrame = new QFrame();
  auto* scrollArea = new QScrollArea();
  m_SettingsWidget = KXVtkModule::utils::CreateSettingsWidget(titleFrame, scrollArea);
  QElidedLabel* title = KXVtkModule::utils::AddSettingsTitle(titleFrame, nullptr, nullptr);
  auto showName = [this, title]()
  {
    title->setText(name() + " : Render View Settings");
    title->setToolTip(name());
  };
  showName();
  connect(this, &VXBridgeObject::nameChanged, title, showName);

  auto* content = new QWidget();
  auto* form = new QFormLayout(content);
  for (const Field& field : fields())
    form->addRow(field.label, buildFieldEditor(field, view, content));
  auto* errorLabel = new QLabel(content);
  errorLabel->setObjectName("globalSourceErrorLabel");
  errorLabel->setWordWrap(true);
  errorLabel->setStyleSheet("color: #d04040;");
  form->addRow(errorLabel);
  QPointer<VXAbstractViewWidget> target(view);
  auto showError = [this, errorLabel, target]()
  {
    VXGlobalSourcePimpl* impl = implementation(target);
    const QString error = impl != nullptr ? impl->error() : QString();
    errorLabel->setText(error);
    errorLabel->setVisible(!error.isEmpty());
  };
  showError();
  connect(this, &VXGlobalSource::settingsChanged, errorLabel, showError);
  scrollArea->setWidget(content);
}

void VXGlobalSource::releaseSettingsWidget()
{
  // the info panel hands a page back without a parent when it shows another
  if (m_SettingsWidget && m_SettingsWidget->parent() == nullptr)
    m_SettingsWidget->deleteLater();
  m_SettingsWidget.clear();
}

QWidget* VXGlobalSource::settingsWidget()
{
  if (!m_SettingsWidget && m_Pipeline != nullptr && m_Pipeline->activeViewWidget() != nullptr)
    initializeSettingsWidget();
  return m_SettingsWidget;
}
