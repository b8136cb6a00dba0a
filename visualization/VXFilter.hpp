#pragma once

#include "visualization/VXCoreObject.hpp"

class vtkAlgorithmOutput;

/**
 * A visual filter: a VTK algorithm as a tree item between its parent's output
 * and its children. This is the frame every filter class derives from.
 */
class KXVTKLIB_EXPORT VXFilter : public VXCoreObject
{
  Q_OBJECT

public:
  explicit VXFilter(QObject* parent = nullptr);
  ~VXFilter() override;

  vtkAlgorithmOutput* inputPort() const { return m_InputPort; }
  virtual void setInputPort(vtkAlgorithmOutput* port);
  /** Builds the filter's objects in its first view; called once it has one. */
  virtual void initializeFilter() = 0;

protected:
  vtkAlgorithmOutput* m_InputPort = nullptr;
};
