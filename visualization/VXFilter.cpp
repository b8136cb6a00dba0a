#include "visualization/VXFilter.hpp"

VXFilter::VXFilter(QObject* parent)
  : VXCoreObject(parent)
{
}

VXFilter::~VXFilter() = default;

void VXFilter::setInputPort(vtkAlgorithmOutput* port)
{
  m_InputPort = port;
}
