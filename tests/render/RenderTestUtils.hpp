#pragma once

#include "VXTestSupport.hpp"
// Shared helpers of the render widget tests: a shown view, event pumping,
// event counters and simple props with known bounds.

#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <gtest/gtest.h>

#include <vtkActor.h>
#include <vtkCallbackCommand.h>
#include <vtkCubeSource.h>
#include <vtkNew.h>
#include <vtkObject.h>
#include <vtkPolyDataMapper.h>
#include <vtkRenderWindowInteractor.h>
#include <vtkRenderer.h>
#include <vtkSmartPointer.h>

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <array>
#include <cmath>
#include <memory>

namespace rendertest
{
using kxtest::drag;
using kxtest::EventCounter;
using kxtest::pump;

/** A box actor spanning the given bounds. */
inline vtkSmartPointer<vtkActor> makeBox(double x0, double x1, double y0, double y1, double z0,
                                         double z1)
{
  vtkNew<vtkCubeSource> cube;
  cube->SetBounds(x0, x1, y0, y1, z0, z1);
  vtkNew<vtkPolyDataMapper> mapper;
  mapper->SetInputConnection(cube->GetOutputPort());
  auto actor = vtkSmartPointer<vtkActor>::New();
  actor->SetMapper(mapper);
  mapper->Update();
  return actor;
}

/** The display position (VTK's, origin at the bottom left) of a world point. */
inline std::array<int, 2> displayOf(vtkRenderer* renderer, double x, double y, double z)
{
  renderer->SetWorldPoint(x, y, z, 1.0);
  renderer->WorldToDisplay();
  double display[3];
  renderer->GetDisplayPoint(display);
  return { static_cast<int>(std::lround(display[0])), static_cast<int>(std::lround(display[1])) };
}

/** Presses (and releases) @p button of the interactor at (x, y), as the Qt adapter does. */
inline void click(vtkRenderWindowInteractor* interactor, int x, int y,
                  unsigned long press = vtkCommand::LeftButtonPressEvent)
{
  interactor->SetEventInformation(x, y, 0, 0);
  interactor->InvokeEvent(press);
  interactor->InvokeEvent(press + 1); // the matching release event
}

/** A key going down (or up) with the cursor at (x, y). */
inline void key(vtkRenderWindowInteractor* interactor, char code, bool down, int x = 150,
                int y = 150)
{
  const char sym[2] = { code, '\0' };
  interactor->SetEventInformation(x, y, 0, 0);
  interactor->SetKeyEventInformation(0, 0, code, 1, sym);
  interactor->InvokeEvent(down ? vtkCommand::KeyPressEvent : vtkCommand::KeyReleaseEvent);
}

/** A shown 300 x 300 view, exposed and settled. */
class ViewTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    m_View = std::make_unique<VXVisualizationWidget>(nullptr, 2);
    m_View->resize(300, 300);
    m_View->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_View.get()));
    pump();
  }
  void TearDown() override { m_View.reset(); }

  std::unique_ptr<VXVisualizationWidget> m_View;
};

inline void expectNear3(const std::array<double, 3>& actual, const std::array<double, 3>& expected,
                        double tolerance = 1e-9)
{
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(actual[i], expected[i], tolerance) << "component " << i;
}
} // namespace rendertest
