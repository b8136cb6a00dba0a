#pragma once

#include "KXVtkLib_export.h"

#include <QtWidgets/QFrame>

namespace voxelia::quadview::annotations
{
/**
 * The small floating editor of one annotation, over its slice pane. Once the
 * user has moved it by hand it stays where it was put.
 */
class KXVTKLIB_EXPORT VXAnnotationHud : public QFrame
{
  Q_OBJECT

public:
  explicit VXAnnotationHud(QWidget* parent = nullptr);
  ~VXAnnotationHud() override;

  /** Whether the user dragged the editor to where it is. */
  bool userMoved() const;

protected:
  bool m_UserMoved = false;
};
} // namespace voxelia::quadview::annotations
