#include "base/result.h"

#include <array>
#include <cerrno>

namespace brindle {
namespace {

struct ErrorText {
  int code;
  std::string_view text;
};

// strerror answers in the language of the process's locale, and differs between systems for some of these.
constexpr auto kErrorTexts = std::to_array<ErrorText>({
    {EPERM, "Operation not permitted"},
    {ENOENT, "No such file or directory"},
    {ESRCH, "No such process"},
    {EINTR, "Interrupted system call"},
    {EIO, "Input/output error"},
    {ENXIO, "No such device or address"},
    {E2BIG, "Argument list too long"},
    {ENOEXEC, "Exec format error"},
    {EBADF, "Bad file descriptor"},
    {ECHILD, "No child processes"},
    {EAGAIN, "Resource temporarily unavailable"},
    {ENOMEM, "Cannot allocate memory"},
    {EACCES, "Permission denied"},
    {EBUSY, "Device or resource busy"},
    {EEXIST, "File exists"},
    {EXDEV, "Invalid cross-device link"},
    {ENODEV, "No such device"},
    {ENOTDIR, "Not a directory"},
    {EISDIR, "Is a directory"},
    {EINVAL, "Invalid argument"},
    {ENFILE, "Too many open files in system"},
    {EMFILE, "Too many open files"},
    {ENOTTY, "Inappropriate ioctl for device"},
    {ETXTBSY, "Text file busy"},
    {EFBIG, "File too large"},
    {ENOSPC, "No space left on device"},
    {ESPIPE, "Illegal seek"},
    {EROFS, "Read-only file system"},
    {EMLINK, "Too many links"},
    {EPIPE, "Broken pipe"},
    {ERANGE, "Numerical result out of range"},
    {EDEADLK, "Resource deadlock avoided"},
    {ENAMETOOLONG, "File name too long"},
    {ENOLCK, "No locks available"},
    {ENOSYS, "Function not implemented"},
    {ENOTEMPTY, "Directory not empty"},
    {ELOOP, "Too many levels of symbolic links"},
    {EPROTO, "Protocol error"},
    {EOVERFLOW, "Value too large for defined data type"},
    {EILSEQ, "Invalid or incomplete multibyte or wide character"},
    {ENOTSUP, "Operation not supported"},
    {EADDRINUSE, "Address already in use"},
    {ECONNABORTED, "Software caused connection abort"},
    {ECONNRESET, "Connection reset by peer"},
    {ENOTCONN, "Transport endpoint is not connected"},
    {ETIMEDOUT, "Connection timed out"},
    {ECONNREFUSED, "Connection refused"},
    {EHOSTUNREACH, "No route to host"},
    {ECANCELED, "Operation canceled"},
    {EDQUOT, "Disk quota exceeded"},
    {kFileWriteNoPermission, "Permission denied"},
});

}  // namespace

std::string errorText(int code) {
  for (const ErrorText& row : kErrorTexts) {
    if (row.code == code) return std::string(row.text);
  }
  return "error " + std::to_string(code);
}

std::string Failure::message() const { return doing + ": " + errorText(code); }

}  // namespace brindle
