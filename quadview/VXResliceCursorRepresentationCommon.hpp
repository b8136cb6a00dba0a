#pragma once

#include "KXVtkLib_export.h"

class vtkRenderer;

/**
 * What the quad view asks of its cursor representations, whichever VTK base
 * they stand on (thin or thick line): the oblique flag that decides whether
 * rotation arrows may show, and removal of the arrows from a renderer before
 * a representation is replaced.
 */
class KXVTKLIB_EXPORT VXResliceCursorRepresentationCommon
{
public:
  virtual ~VXResliceCursorRepresentationCommon() = default;

  /** Oblique mode allows rotation by the arrows; off hides them. */
  virtual void setObliqueMode(bool on) = 0;
  virtual bool getObliqueMode() const = 0;
  /** Takes the arrow actors out of @p renderer; null does nothing. */
  virtual void removeActorsFromRenderer(vtkRenderer* renderer) = 0;
};
