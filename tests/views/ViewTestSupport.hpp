#pragma once

#include "VXTestSupport.hpp"
// Shared helpers of the view frame and split grid tests: event pumping, a
// shown grid, camera comparison and VTK event counting.

#include "TestSupport.hpp"

#include "visualization/QtWidgets/VXAbstractViewWidget.hpp"
#include "visualization/QtWidgets/VXViewGridWidget.hpp"
#include "visualization/QtWidgets/VXViewWidget.hpp"
#include "visualization/QtWidgets/VXVisualizationWidget.hpp"

#include <gtest/gtest.h>

#include <vtkCallbackCommand.h>
#include <vtkCamera.h>
#include <vtkNew.h>
#include <vtkObject.h>
#include <vtkRenderer.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>
#include <QtGui/QFocusEvent>
#include <QtTest/QTest>

#include <array>
#include <set>
#include <memory>

namespace viewtest
{
using kxtest::EventCounter;
using kxtest::pump;

inline vtkCamera* cameraOf(VXAbstractViewWidget* view)
{
  return view->getVisualizationWidget()->getRenderer()->GetActiveCamera();
}

inline std::array<double, 3> triple(const double* values)
{
  return { values[0], values[1], values[2] };
}

/** What a click on a render view does to focus: the pending camera link completes. */
inline void focusIn(VXAbstractViewWidget* view)
{
  QFocusEvent focus(QEvent::FocusIn, Qt::MouseFocusReason);
  QCoreApplication::sendEvent(view->getVisualizationWidget(), &focus);
}

/** A shown 600 x 400 grid with its first view; split numbering starts afresh for each test. */
class GridTest : public ::testing::Test
{
protected:
  void SetUp() override
  {
    VXViewWidget::s_NextSplitViewId = 2;
    m_Grid = makeGrid();
    ASSERT_NE(m_Grid->activeView(), nullptr);
  }
  void TearDown() override
  {
    m_Grid.reset();
    pump();
  }

  static std::unique_ptr<VXViewGridWidget> makeGrid()
  {
    auto grid = std::make_unique<VXViewGridWidget>();
    grid->resize(600, 400);
    grid->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(grid.get()));
    pump();
    return grid;
  }

  VXViewWidget* viewAt(int index) const
  {
    return qobject_cast<VXViewWidget*>(m_Grid->allViews().value(index));
  }

  std::unique_ptr<VXViewGridWidget> m_Grid;
};
} // namespace viewtest
