#include "utils/PipelineUtils.hpp"

#include <vtkAlgorithm.h>
#include <vtkAlgorithmOutput.h>
#include <vtkDataSet.h>

#include <unordered_set>

namespace KXVtk::utils
{
vtkDataSet* FindOriginalPipelineInput(vtkAlgorithm* algorithm)
{
  std::unordered_set<vtkAlgorithm*> visited;
  int port = 0;
  while (algorithm != nullptr)
  {
    if (!visited.insert(algorithm).second)
      return nullptr;
    if (algorithm->GetNumberOfInputPorts() < 1 || algorithm->GetNumberOfInputConnections(0) < 1)
      return vtkDataSet::SafeDownCast(algorithm->GetOutputDataObject(port));
    // the port of the producer that this algorithm reads, for producers with several outputs
    vtkAlgorithmOutput* upstream = algorithm->GetInputConnection(0, 0);
    port = upstream != nullptr ? upstream->GetIndex() : 0;
    algorithm = upstream != nullptr ? upstream->GetProducer() : nullptr;
  }
  return nullptr;
}
} // namespace KXVtk::utils
