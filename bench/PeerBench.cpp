// The viewer beside F3D, an independent viewer, on the same two large files:
// a 2 M-triangle mesh with a point array and a 256^3 float image, each
// rendered headless to an 800x600 PNG by the whole program, as a user runs it.
// Each program runs a few times in turn; the medians of wall time and of peak
// resident memory (of the child process, from wait4) are compared, and the
// viewer reports the frames its views drew.
//
//   kxvtk_peer_bench VIEWER F3D SCRATCH_DIR [RUNS]
#include <vtkDataObject.h>
#include <vtkElevationFilter.h>
#include <vtkFloatArray.h>
#include <vtkImageData.h>
#include <vtkNew.h>
#include <vtkPointData.h>
#include <vtkPolyData.h>
#include <vtkSphereSource.h>
#include <vtkXMLGenericDataObjectReader.h>
#include <vtkXMLImageDataWriter.h>
#include <vtkXMLPolyDataWriter.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace
{
struct Run
{
  double seconds = 0.0;
  long peakKiB = 0;
  int exitCode = -1;
  std::string output;
};

/** Runs @p argv with its output in @p logPath; wall time and the child's peak resident size. */
Run runProcess(const std::vector<std::string>& argv, const fs::path& logPath,
               const std::vector<std::string>& environment)
{
  Run run;
  const auto start = std::chrono::steady_clock::now();
  const pid_t pid = fork();
  if (pid == 0)
  {
    const int log = open(logPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (log >= 0)
    {
      dup2(log, 1);
      dup2(log, 2);
    }
    for (const std::string& setting : environment)
      putenv(const_cast<char*>(setting.c_str()));
    std::vector<char*> args;
    for (const std::string& arg : argv)
      args.push_back(const_cast<char*>(arg.c_str()));
    args.push_back(nullptr);
    execvp(args[0], args.data());
    std::perror(args[0]);
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  if (pid < 0 || wait4(pid, &status, 0, &usage) < 0)
    return run;
  run.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  run.peakKiB = usage.ru_maxrss;
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream in(logPath);
  std::stringstream text;
  text << in.rdbuf();
  run.output = text.str();
  return run;
}

double median(std::vector<double> values)
{
  if (values.empty())
    return 0.0;
  std::sort(values.begin(), values.end());
  const std::size_t mid = values.size() / 2;
  return values.size() % 2 == 1 ? values[mid] : 0.5 * (values[mid - 1] + values[mid]);
}

/** A sphere of 2 000 000 triangles with one point array, "Height". */
void writeMesh(const fs::path& path)
{
  vtkNew<vtkSphereSource> sphere;
  sphere->SetThetaResolution(1000);
  sphere->SetPhiResolution(1002);
  sphere->SetRadius(1.0);
  vtkNew<vtkElevationFilter> height;
  height->SetInputConnection(sphere->GetOutputPort());
  height->SetLowPoint(0.0, 0.0, -1.0);
  height->SetHighPoint(0.0, 0.0, 1.0);
  height->Update();
  vtkNew<vtkPolyData> mesh;
  mesh->ShallowCopy(height->GetOutput());
  // the mesh carries its point array only: no normals
  mesh->GetPointData()->Initialize();
  vtkDataArray* elevation = height->GetOutput()->GetPointData()->GetArray("Elevation");
  vtkNew<vtkFloatArray> values;
  values->DeepCopy(elevation);
  values->SetName("Height");
  mesh->GetPointData()->SetScalars(values);
  vtkNew<vtkXMLPolyDataWriter> writer;
  writer->SetInputData(mesh);
  writer->SetFileName(path.c_str());
  writer->SetDataModeToAppended();
  writer->EncodeAppendedDataOff();
  writer->SetCompressorTypeToNone();
  writer->Write();
}

/** A 256^3 image with a float point array "Density" that varies smoothly. */
void writeImage(const fs::path& path)
{
  constexpr int k_Side = 256;
  vtkNew<vtkImageData> image;
  image->SetDimensions(k_Side, k_Side, k_Side);
  vtkNew<vtkFloatArray> density;
  density->SetName("Density");
  density->SetNumberOfValues(vtkIdType{ k_Side } * k_Side * k_Side);
  float* value = density->GetPointer(0);
  for (int z = 0; z < k_Side; ++z)
    for (int y = 0; y < k_Side; ++y)
      for (int x = 0; x < k_Side; ++x)
        *value++ = std::sin(0.05f * x) * std::cos(0.07f * y) + 0.01f * z;
  image->GetPointData()->SetScalars(density);
  vtkNew<vtkXMLImageDataWriter> writer;
  writer->SetInputData(image);
  writer->SetFileName(path.c_str());
  writer->SetDataModeToAppended();
  writer->EncodeAppendedDataOff();
  writer->SetCompressorTypeToNone();
  writer->Write();
}

/** The memory the data set takes once read, in KiB. */
long sizeAsRead(const fs::path& path)
{
  vtkNew<vtkXMLGenericDataObjectReader> reader;
  reader->SetFileName(path.c_str());
  reader->Update();
  vtkDataObject* data = reader->GetOutputDataObject(0);
  return data != nullptr ? static_cast<long>(data->GetActualMemorySize()) : 0;
}

struct PeerFile
{
  std::string name;
  fs::path path;
  std::string array;
  std::vector<std::string> viewerExtra;
};
} // namespace

int main(int argc, char** argv)
{
  if (argc < 4)
  {
    std::fprintf(stderr, "usage: %s VIEWER F3D SCRATCH_DIR [RUNS]\n", argv[0]);
    return 2;
  }
  const std::string viewer = argv[1];
  const std::string f3d = argv[2];
  const fs::path scratch = argv[3];
  const int runs = argc > 4 ? std::max(1, std::atoi(argv[4])) : 3;
  fs::create_directories(scratch / "config");

  const std::vector<PeerFile> files = {
    { "mesh_2m", scratch / "mesh_2m.vtp", "Height", {} },
    // an image opens as an outline in the viewer; its surface is what F3D shows
    { "image_256", scratch / "image_256.vti", "Density", { "--representation", "Surface" } },
  };
  for (const PeerFile& file : files)
  {
    if (fs::exists(file.path))
      continue;
    std::printf("writing %s\n", file.path.c_str());
    std::fflush(stdout);
    if (file.name == "mesh_2m")
      writeMesh(file.path);
    else
      writeImage(file.path);
  }

  // the viewer's settings of its own, so that a user's settings don't change the figures
  const std::vector<std::string> environment = { "XDG_CONFIG_HOME=" +
                                                 (scratch / "config").string() };
  const std::regex framesLine(R"(frames drawn:((?: \d+)+))");
  int failures = 0;
  for (const PeerFile& file : files)
  {
    const long dataKiB = sizeAsRead(file.path);
    std::vector<std::string> ours = {
      viewer,     "--screenshot",  (scratch / (file.name + "-kxvtk.png")).string(),
      "--size",   "800x600",       "--color-by",
      file.array, "--print-frames"
    };
    ours.insert(ours.end(), file.viewerExtra.begin(), file.viewerExtra.end());
    ours.push_back(file.path.string());
    const std::vector<std::string> theirs = {
      f3d,
      "--no-config",
      "--output=" + (scratch / (file.name + "-f3d.png")).string(),
      "--resolution=800,600",
      "--scalar-coloring",
      "--coloring-array=" + file.array,
      file.path.string(),
    };

    std::vector<double> ourSeconds, theirSeconds, ourPeak, theirPeak;
    int frames = -1;
    for (int i = 0; i < runs; ++i)
    {
      const Run our = runProcess(ours, scratch / (file.name + "-kxvtk.log"), environment);
      const Run their = runProcess(theirs, scratch / (file.name + "-f3d.log"), {});
      if (our.exitCode != 0 || their.exitCode != 0)
      {
        std::fprintf(stderr, "%s: the viewer exited with %d, f3d with %d\n%s\n%s\n",
                     file.name.c_str(), our.exitCode, their.exitCode, our.output.c_str(),
                     their.output.c_str());
        ++failures;
        break;
      }
      ourSeconds.push_back(our.seconds);
      theirSeconds.push_back(their.seconds);
      ourPeak.push_back(static_cast<double>(our.peakKiB));
      theirPeak.push_back(static_cast<double>(their.peakKiB));
      std::smatch match;
      if (std::regex_search(our.output, match, framesLine))
      {
        // the most any view drew
        std::istringstream counts(match[1].str());
        int count = 0;
        frames = 0;
        while (counts >> count)
          frames = std::max(frames, count);
      }
      std::printf("%s run %d: viewer %.2f s %ld MiB, f3d %.2f s %ld MiB\n", file.name.c_str(),
                  i + 1, our.seconds, our.peakKiB / 1024, their.seconds, their.peakKiB / 1024);
      std::fflush(stdout);
    }
    if (ourSeconds.empty())
      continue;
    std::printf("%s: data as read %ld MiB; peak RSS viewer %.0f MiB (%.1fx the data), f3d %.0f MiB "
                "(%.1fx the data)\n",
                file.name.c_str(), dataKiB / 1024, median(ourPeak) / 1024,
                median(ourPeak) / std::max(1L, dataKiB), median(theirPeak) / 1024,
                median(theirPeak) / std::max(1L, dataKiB));
    std::printf("RATIO screenshot_vs_f3d_%s %.2f 1.5\n", file.name.c_str(),
                median(ourSeconds) / median(theirSeconds));
    std::printf("RATIO peak_memory_vs_f3d_%s %.2f 1.0\n", file.name.c_str(),
                median(ourPeak) / median(theirPeak));
    std::printf("FRAMES screenshot_%s %d\n", file.name.c_str(), frames);
    std::fflush(stdout);
  }
  return failures == 0 ? 0 : 1;
}
