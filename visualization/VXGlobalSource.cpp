#include "visualization/VXGlobalSource.hpp"

VXGlobalSource::VXGlobalSource(QObject* parent)
  : VXCoreObject(parent)
{
}

VXGlobalSource::~VXGlobalSource() = default;
