#include "visualization/QtWidgets/VXGLWidget.hpp"

VXGLWidget::VXGLWidget(QWidget* parent)
  : QVTKOpenGLNativeWidget(parent, Qt::WindowFlags())
{
}

VXGLWidget::~VXGLWidget() = default;
