#pragma once

#include "KXVtkLib_export.h"

#include "visualization/QtWidgets/VXGridAxesWidget.hpp"

#include <vtkSmartPointer.h>
#include <vtkWeakPointer.h>

#include <nlohmann/json_fwd.hpp>

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtGui/QImage>

#include <array>
#include <functional>
#include <vector>

class QAction;
class QWidget;
class vtkGridAxesActor3D;
class vtkRenderWindow;
class vtkRenderer;

/**
 * The per-view actions that do not need the render widget's internals:
 * image capture and screenshots, background colour, and the axes grid with its
 * options dialog. The render widget owns one and adapts it with hooks (hide the
 * toolbar during a capture, colour the outline renderer too, ...). The
 * dialogs a user would answer go through VXUserPrompt, so that a host or a
 * test can answer them without a modal loop.
 */
class KXVTKLIB_EXPORT VXViewActionsController : public QObject
{
  Q_OBJECT

public:
  using Hook = std::function<void()>;
  using BackgroundChangedHook = std::function<void(const QColor&)>;
  using DefaultBackgroundProvider = std::function<QColor()>;

  /** @p renderer is the scene renderer; @p viewWidget parents the dialogs. */
  VXViewActionsController(vtkRenderer* renderer, QWidget* viewWidget, QObject* parent = nullptr);
  ~VXViewActionsController() override;

  void setPreCaptureHook(Hook hook) { m_PreCaptureHook = std::move(hook); }
  void setPostCaptureHook(Hook hook) { m_PostCaptureHook = std::move(hook); }
  void setBackgroundChangedHook(BackgroundChangedHook hook)
  {
    m_BackgroundChangedHook = std::move(hook);
  }
  void setDefaultBackgroundProvider(DefaultBackgroundProvider provider)
  {
    m_DefaultBackground = std::move(provider);
  }

  /**
   * Draws the view into an image: RGBA with a transparent background when
   * @p transparent, otherwise RGB on @p background (the view's own background
   * when that is invalid). Null without renderer or window, or when VTK gives
   * no pixels. The view looks as before afterwards.
   */
  QImage captureViewImage(bool transparent, const QColor& background);

  /** "Save Screenshot ..." */
  QAction* getSaveScreenshotAction();
  /** "Copy Screenshot" */
  QAction* getCopyScreenshotAction();
  /** "Change Background Color" */
  QAction* getChangeBackgroundColorAction();
  /** "Restore Default Background Color" */
  QAction* getRestoreDefaultBackgroundColorAction();
  /** "Axes Grid", checkable */
  QAction* getGridAxesAction();
  /** "Edit Axes Grid" */
  QAction* getEditGridAxesAction();

  /** The renderer's current background. */
  QColor backgroundColor() const;
  /** Sets the renderer's background, runs the background hook, renders and updates the view. */
  void setBackgroundColor(const QColor& color);
  /**
   * Sets a background from loaded 0..1 components; components out of range are
   * clamped, each with a printOutput message.
   */
  void setBackgroundColorComponents(std::array<double, 3> rgb);

  /** The axes grid actor; null until the grid is first asked for. */
  vtkGridAxesActor3D* getGridAxesActor() const;
  /** Whether the axes grid is shown. */
  bool gridAxesEnabled() const;
  /** Creates the grid actor (hidden) if there is none. */
  void ensureGridAxesActor();
  /** Fits the grid to the visible geometry (all zeros without any) and reapplies the settings. */
  void recomputeGridAxesBounds();
  /** Pushes the cached settings (labels, appearance, titles, grid lines) to the actor. */
  void applyCachedConfigToActor();
  /** Shows or hides the grid, fitting it first when shown. */
  void setGridAxesEnabled(bool enabled);
  /** Replaces the cached settings, mirrors them into the dialog and applies them. */
  void setGridAxesConfig(std::array<double, 3> spacing, bool showGrid, const QColor& color,
                         double opacity, bool showLabels, std::array<QString, 3> titles);
  /** The cached settings. */
  const VXGridAxesConfig& gridAxesConfig() const { return m_GridConfig; }
  /** The custom label values last given to axis @p axis; empty when the axis labels itself. */
  const std::vector<double>& gridAxesLabels(int axis) const
  {
    return m_AppliedLabels.at(static_cast<size_t>(axis));
  }
  /** Whether axis @p axis uses custom labels. */
  bool gridAxesUsesCustomLabels(int axis) const
  {
    return m_AppliedCustom.at(static_cast<size_t>(axis));
  }
  /**
   * Writes the view's state into @p state as an object: "background" (three 0..1 components),
   * "grid_axes" (bool) and "camera" ("position", "focal_point", "view_up", "parallel_scale",
   * "parallel_projection").
   */
  void saveState(nlohmann::json& state) const;
  /** Applies what saveState wrote; keys missing or of a wrong type leave their setting alone. */
  void restoreState(const nlohmann::json& state);

  /** The options dialog; null until "Edit Axes Grid" is first used. */
  VXGridAxesWidget* getGridAxesWidget() const { return m_GridAxesWidget; }

public Q_SLOTS:
  /** Asks file name and options, captures and writes the image; failures go to printOutput. */
  void saveScreenshot();
  /** Puts an image of the view on the clipboard. */
  void copyScreenshot();
  /** Asks a colour and makes it the background. */
  void changeBackgroundColor();
  /** Puts the preferences' default background back. */
  void restoreDefaultBackgroundColor();
  /** Opens (or raises) the grid options dialog loaded with the cached settings. */
  void editGridAxes();
  /** Takes the dialog's values as the cached settings and applies them. */
  void applyGridAxesEdits();

Q_SIGNALS:
  void printOutput(QString message);

private:
  vtkRenderWindow* renderWindow() const;
  void renderWindowNow() const;

  vtkWeakPointer<vtkRenderer> m_Renderer;
  QPointer<QWidget> m_ViewWidget;
  Hook m_PreCaptureHook;
  Hook m_PostCaptureHook;
  BackgroundChangedHook m_BackgroundChangedHook;
  DefaultBackgroundProvider m_DefaultBackground;

  QAction* m_SaveScreenshotAction = nullptr;
  QAction* m_CopyScreenshotAction = nullptr;
  QAction* m_ChangeBackgroundAction = nullptr;
  QAction* m_RestoreBackgroundAction = nullptr;
  QAction* m_GridAxesAction = nullptr;
  QAction* m_EditGridAxesAction = nullptr;

  vtkSmartPointer<vtkGridAxesActor3D> m_GridAxesActor;
  VXGridAxesConfig m_GridConfig;
  std::array<std::vector<double>, 3> m_AppliedLabels;
  std::array<bool, 3> m_AppliedCustom = { false, false, false };
  QPointer<VXGridAxesWidget> m_GridAxesWidget;
};
