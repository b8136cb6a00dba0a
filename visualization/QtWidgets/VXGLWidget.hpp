#pragma once

#include "KXVtkLib_export.h"

#include <QVTKOpenGLNativeWidget.h>

/** The OpenGL widget every render view draws into. */
class KXVTKLIB_EXPORT VXGLWidget : public QVTKOpenGLNativeWidget
{
  Q_OBJECT

public:
  explicit VXGLWidget(QWidget* parent = nullptr);
  ~VXGLWidget() override;
};
