#pragma once

#include <hdf5.h>

#include <string>
#include <utility>

namespace kx::core::HDF5
{
/**
 * Owns one HDF5 identifier (file, group, dataset, attribute, dataspace, type
 * or property list) and closes it with the matching H5?close function, so that
 * no early return or exception in the file layer leaks an identifier.
 * Private to kxcore: the installed headers never include hdf5.h.
 */
class Handle
{
public:
  using Closer = herr_t (*)(hid_t);

  Handle() = default;
  Handle(hid_t id, Closer closer)
    : m_Id(id)
    , m_Closer(closer)
  {
  }
  Handle(Handle&& other) noexcept
    : m_Id(std::exchange(other.m_Id, H5I_INVALID_HID))
    , m_Closer(other.m_Closer)
  {
  }
  Handle& operator=(Handle&& other) noexcept
  {
    if (this != &other)
    {
      reset();
      m_Id = std::exchange(other.m_Id, H5I_INVALID_HID);
      m_Closer = other.m_Closer;
    }
    return *this;
  }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() { reset(); }

  hid_t get() const { return m_Id; }
  bool isValid() const { return m_Id >= 0; }

  /** Closes now; the status tells whether HDF5 could flush and release it. */
  bool close()
  {
    if (m_Id < 0)
      return true;
    const herr_t status = m_Closer(m_Id);
    m_Id = H5I_INVALID_HID;
    return status >= 0;
  }
  void reset() { close(); }

  static Handle File(hid_t id) { return { id, &H5Fclose }; }
  static Handle Group(hid_t id) { return { id, &H5Gclose }; }
  static Handle Dataset(hid_t id) { return { id, &H5Dclose }; }
  static Handle Attribute(hid_t id) { return { id, &H5Aclose }; }
  static Handle Dataspace(hid_t id) { return { id, &H5Sclose }; }
  static Handle Datatype(hid_t id) { return { id, &H5Tclose }; }
  static Handle PropertyList(hid_t id) { return { id, &H5Pclose }; }
  static Handle Object(hid_t id) { return { id, &H5Oclose }; }

private:
  hid_t m_Id = H5I_INVALID_HID;
  Closer m_Closer = nullptr;
};

/**
 * Turns off HDF5's printing of its error stack for the calling thread: the
 * file layer reports failures through Result and must not write to stderr.
 */
inline void SilenceErrorStack()
{
  H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
}

/** The most specific message on the calling thread's HDF5 error stack, or empty. */
inline std::string MostSpecificError()
{
  std::string message;
  auto walker = [](unsigned n, const H5E_error2_t* error, void* data) -> herr_t
  {
    auto* text = static_cast<std::string*>(data);
    if (n == 0 && error != nullptr && error->desc != nullptr)
      *text = error->desc;
    return 0;
  };
  H5Ewalk2(H5E_DEFAULT, H5E_WALK_UPWARD, walker, &message);
  return message;
}
} // namespace kx::core::HDF5
