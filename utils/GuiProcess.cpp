#include "utils/GuiProcess.hpp"

#include <QVTKOpenGLNativeWidget.h>

#include <QtGui/QSurfaceFormat>

namespace KXVtk::utils
{
void PrepareGuiProcess()
{
  QSurfaceFormat::setDefaultFormat(QVTKOpenGLNativeWidget::defaultFormat());
}
} // namespace KXVtk::utils
