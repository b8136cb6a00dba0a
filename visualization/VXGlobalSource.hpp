#pragma once

#include "visualization/VXCoreObject.hpp"

/**
 * An annotation object of a render view (text, ruler, arrow, ...) that stands
 * at the top of the tree beside the bridges rather than under data.
 */
class KXVTKLIB_EXPORT VXGlobalSource : public VXCoreObject
{
  Q_OBJECT

public:
  explicit VXGlobalSource(QObject* parent = nullptr);
  ~VXGlobalSource() override;

  void setNameSuffix(int suffix) { setNameSuffixCounter(suffix); }
  /** Forgets the settings page, so that the next ask builds a new one; the old page stays with its
   * owner. */
  void releaseSettingsWidget() { m_SettingsWidget.clear(); }
};
