#include "KXComponents/ColorPresetsDialog.hpp"

#include "KXComponents/KXColorButton.hpp"
#include "KXComponents/KXColorPresets.hpp"

#include <QtGui/QPainter>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

using kx::core::ColorTableUtilities::ColorPreset;

namespace
{
/** Index of the preset in the list, stored on each row. */
constexpr int k_PresetIndexRole = Qt::UserRole + 1;
const QSize k_PreviewSize(160, 16);

QColor ColorAt(const std::vector<float>& values, size_t first)
{
  const auto channel = [&values, first](size_t i)
  { return std::clamp(static_cast<double>(values[first + i]), 0.0, 1.0); };
  return QColor::fromRgbF(static_cast<float>(channel(0)), static_cast<float>(channel(1)),
                          static_cast<float>(channel(2)));
}
} // namespace

ColorPresetsDialog::ColorPresetsDialog(QWidget* parent)
  : QDialog(parent)
  , m_Presets(KXColorPresets::LoadBuiltIn())
{
  setWindowTitle(tr("Color Map Presets"));

  m_List = new QListWidget(this);
  m_List->setObjectName(QStringLiteral("presetList"));
  m_List->setIconSize(k_PreviewSize);
  m_List->setSelectionMode(QAbstractItemView::SingleSelection);

  m_NanColorButton = new KXColorButton(QColor(255, 255, 0), this);
  m_NanColorButton->setObjectName(QStringLiteral("nanColorButton"));
  m_NanColorButton->setToolTip(tr("Color of values that are not a number"));

  auto* nanRow = new QHBoxLayout();
  nanRow->addWidget(new QLabel(tr("NaN Color:"), this));
  nanRow->addWidget(m_NanColorButton);
  nanRow->addStretch();

  auto* buttons = new QDialogButtonBox(this);
  QPushButton* applyButton = buttons->addButton(tr("Apply"), QDialogButtonBox::ApplyRole);
  applyButton->setObjectName(QStringLiteral("applyButton"));
  QPushButton* defaultButton =
    buttons->addButton(tr("Restore Default"), QDialogButtonBox::ResetRole);
  defaultButton->setObjectName(QStringLiteral("restoreDefaultButton"));
  QPushButton* closeButton = buttons->addButton(QDialogButtonBox::Close);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(m_List);
  layout->addLayout(nanRow);
  layout->addWidget(buttons);

  connect(applyButton, &QPushButton::clicked, this, &ColorPresetsDialog::applySelectedPreset);
  connect(defaultButton, &QPushButton::clicked, this, &ColorPresetsDialog::requestDefaultPreset);
  connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_List, &QListWidget::itemDoubleClicked, this, &ColorPresetsDialog::applySelectedPreset);
  connect(m_NanColorButton, &KXColorButton::changedColor, this,
          &ColorPresetsDialog::nanColorChanged);

  rebuildList();
}

ColorPresetsDialog::~ColorPresetsDialog() = default;

void ColorPresetsDialog::setPresets(std::vector<ColorPreset> presets)
{
  m_Presets = std::move(presets);
  rebuildList();
}

const std::vector<ColorPreset>& ColorPresetsDialog::presets() const
{
  return m_Presets;
}

void ColorPresetsDialog::setFilter(Filter filter)
{
  if (filter == m_Filter)
  {
    return;
  }
  m_Filter = filter;
  rebuildList();
}

ColorPresetsDialog::Filter ColorPresetsDialog::filter() const
{
  return m_Filter;
}

QStringList ColorPresetsDialog::listedPresetNames() const
{
  QStringList names;
  for (int row = 0; row < m_List->count(); ++row)
  {
    names.append(m_List->item(row)->text());
  }
  return names;
}

bool ColorPresetsDialog::selectPreset(const QString& name)
{
  for (int row = 0; row < m_List->count(); ++row)
  {
    if (m_List->item(row)->text() == name)
    {
      m_List->setCurrentRow(row);
      return true;
    }
  }
  return false;
}

std::optional<ColorPreset> ColorPresetsDialog::selectedPreset() const
{
  const QListWidgetItem* item = m_List->currentItem();
  if (item == nullptr || !item->isSelected())
  {
    return std::nullopt;
  }
  const int index = item->data(k_PresetIndexRole).toInt();
  if (index < 0 || static_cast<size_t>(index) >= m_Presets.size())
  {
    return std::nullopt;
  }
  return m_Presets[static_cast<size_t>(index)];
}

QColor ColorPresetsDialog::nanColor() const
{
  return m_NanColorButton->color();
}

KXColorButton* ColorPresetsDialog::nanColorButton() const
{
  return m_NanColorButton;
}

void ColorPresetsDialog::setNanColor(const QColor& color)
{
  m_NanColorButton->setColor(color);
}

void ColorPresetsDialog::applySelectedPreset()
{
  const std::optional<ColorPreset> preset = selectedPreset();
  if (!preset)
  {
    return;
  }
  Q_EMIT presetSelected(*preset);
  Q_EMIT applyPreset(*preset, PreviewPixmap(*preset, k_PreviewSize));
}

void ColorPresetsDialog::requestDefaultPreset()
{
  Q_EMIT restoreDefaultPreset();
}

QPixmap ColorPresetsDialog::PreviewPixmap(const ColorPreset& preset, const QSize& size)
{
  QPixmap pixmap(size);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  const QRectF area(0, 0, size.width(), size.height());
  const size_t indexedCount = preset.indexedColors.size() / 3;
  if (preset.rgbPoints.size() >= 4 && indexedCount == 0)
  {
    const size_t count = preset.rgbPoints.size() / 4;
    const double first = preset.rgbPoints.front();
    const double last = preset.rgbPoints[(count - 1) * 4];
    const double span = last > first ? last - first : 1.0;
    QLinearGradient gradient(area.topLeft(), area.topRight());
    for (size_t i = 0; i < count; ++i)
    {
      // Positions are data values; the strip shows them over the map's own range.
      const double stop = std::clamp((preset.rgbPoints[i * 4] - first) / span, 0.0, 1.0);
      gradient.setColorAt(stop, ColorAt(preset.rgbPoints, i * 4 + 1));
    }
    painter.fillRect(area, gradient);
  }
  else if (indexedCount > 0)
  {
    const double width = area.width() / static_cast<double>(indexedCount);
    for (size_t i = 0; i < indexedCount; ++i)
    {
      painter.fillRect(QRectF(width * static_cast<double>(i), 0, width + 0.5, area.height()),
                       ColorAt(preset.indexedColors, i * 3));
    }
  }
  return pixmap;
}

bool ColorPresetsDialog::accepts(const ColorPreset& preset) const
{
  switch (m_Filter)
  {
    case Filter::Continuous:
      return KXColorPresets::IsContinuous(preset);
    case Filter::Indexed:
      return kx::core::ColorTableUtilities::IsValidIndexedPreset(preset);
    case Filter::All:
      break;
  }
  return true;
}

void ColorPresetsDialog::rebuildList()
{
  m_List->clear();
  for (size_t i = 0; i < m_Presets.size(); ++i)
  {
    const ColorPreset& preset = m_Presets[i];
    if (!accepts(preset))
    {
      continue;
    }
    auto* item = new QListWidgetItem(QIcon(PreviewPixmap(preset, k_PreviewSize)),
                                     QString::fromStdString(preset.name), m_List);
    item->setData(k_PresetIndexRole, static_cast<int>(i));
  }
}
