#include "visualization/VXUpdateHistogramCallback.hpp"

#include "visualization/VXRepresentationPimpl.hpp"

#include <vtkObjectFactory.h>

vtkStandardNewMacro(VXUpdateHistogramCallback);

void VXUpdateHistogramCallback::setRepresentationPimpl(VXRepresentationPimpl* pimpl)
{
  m_Pimpl = pimpl;
}

VXRepresentationPimpl* VXUpdateHistogramCallback::representationPimpl() const
{
  return m_Pimpl.data();
}

void VXUpdateHistogramCallback::Execute(vtkObject*, unsigned long, void*)
{
  if (m_Pimpl != nullptr)
    m_Pimpl->updateHistogram();
}
