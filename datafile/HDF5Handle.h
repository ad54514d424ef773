#pragma once

#include <hdf5.h>

#include <utility>

namespace zarvi {

/// Owns one HDF5 identifier for the length of a scope and closes it with the
/// matching library function, so that no early return of the data-file layer
/// leaves an identifier open. Internal to the data-file layer; lives on the
/// thread of the reader or writer that made it.
class HDF5Handle
{
public:
    using Closer = herr_t (*)(hid_t);

    HDF5Handle(hid_t id, Closer closer) : m_id(id), m_closer(closer) {}
    ~HDF5Handle() { reset(); }
    HDF5Handle(const HDF5Handle&) = delete;
    HDF5Handle& operator=(const HDF5Handle&) = delete;
    HDF5Handle(HDF5Handle&& other) noexcept
        : m_id(std::exchange(other.m_id, H5I_INVALID_HID)), m_closer(other.m_closer)
    {
    }
    HDF5Handle& operator=(HDF5Handle&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_id = std::exchange(other.m_id, H5I_INVALID_HID);
            m_closer = other.m_closer;
        }
        return *this;
    }

    hid_t get() const { return m_id; }
    bool valid() const { return m_id >= 0; }
    /// Hands the identifier to the caller, who closes it from now on.
    hid_t release() { return std::exchange(m_id, H5I_INVALID_HID); }
    void reset()
    {
        if (m_id >= 0)
            m_closer(m_id);
        m_id = H5I_INVALID_HID;
    }

private:
    hid_t m_id;
    Closer m_closer;
};

} // namespace zarvi
