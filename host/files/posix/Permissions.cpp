#include "files/posix/Permissions.h"

#include <cerrno>
#include <memory>
#include <string_view>

#if defined(ZELSTORY_HAS_ACL)
#include <acl/libacl.h>
#include <attr/libattr.h>
#include <sys/acl.h>
#endif

namespace zelstoryhost {
namespace {

constexpr mode_t kOwner = 0700;
constexpr mode_t kEverybody = 0777;
constexpr mode_t kAll = 07777;

#if defined(ZELSTORY_HAS_ACL)

using ACL = std::unique_ptr<std::remove_pointer_t<acl_t>, decltype(&acl_free)>;

ACL ReadACL(const Descriptor& file) {
  return {file ? acl_get_fd(file.Number()) : nullptr, acl_free};
}

mode_t PermissionsOf(acl_entry_t entry) {
  acl_permset_t set = nullptr;
  acl_get_permset(entry, &set);
  mode_t mode = 0;
  if (acl_get_perm(set, ACL_READ) == 1) mode |= 4;
  if (acl_get_perm(set, ACL_WRITE) == 1) mode |= 2;
  if (acl_get_perm(set, ACL_EXECUTE) == 1) mode |= 1;
  return mode;
}

// What the access control list gives to everybody but the owner.
mode_t CommonPermissions(const Descriptor& file) {
  mode_t common = 7;
  const ACL list = ReadACL(file);
  acl_entry_t entry = nullptr;
  if (!list) return common;
  for (int id = ACL_FIRST_ENTRY; acl_get_entry(list.get(), id, &entry) == 1; id = ACL_NEXT_ENTRY) {
    acl_tag_t tag = ACL_UNDEFINED_TAG;
    acl_get_tag_type(entry, &tag);
    if (tag != ACL_USER_OBJ) common &= PermissionsOf(entry);
  }
  return common;
}

// Gives the new file the old one's list in place of what the folder's default gave it. Returns
// false if that was not possible, unless the mode alone says the same.
bool CopyACL(const Descriptor& old, const Descriptor& file) {
  if (!old) return false;
  const ACL list = ReadACL(old);
  if (!list) return errno == ENOTSUP || errno == ENOSYS;  // a file system without lists
  if (acl_set_fd(file.Number(), list.get()) == 0) return true;
  return acl_equiv_mode(list.get(), nullptr) == 0 && acl_extended_fd(file.Number()) != 1;
}

// Security labels are about the bytes that a file has, so a new one gets its own.
int IsToBeCopied(const char* name, error_context* context) {
  return !std::string_view(name).starts_with("security.") &&
                 attr_copy_check_permissions(name, context) != 0
             ? 1
             : 0;
}

void CopyAttributes(const Descriptor& old, const Descriptor& file) {
  if (old) attr_copy_fd("", old.Number(), "", file.Number(), IsToBeCopied, nullptr);
}

#else  // what a list says cannot be known

mode_t CommonPermissions(const Descriptor&) {
  return 7;
}
bool CopyACL(const Descriptor&, const Descriptor&) {
  return false;
}
void CopyAttributes(const Descriptor&, const Descriptor&) {}

#endif

}  // namespace

mode_t NarrowMode(const OldFile& old) {
  const mode_t mode = old.mStatus.st_mode;
  const mode_t common = mode >> 3 & mode & CommonPermissions(old.mFile) & 7;
  return (mode & kOwner) | common << 3 | common;
}

void TakeOver(const OldFile& old, const Descriptor& file) {
  CopyAttributes(old.mFile, file);
  // Without the right to give the file away, it becomes this user's, if possible in the old group.
  if (fchown(file.Number(), old.mStatus.st_uid, old.mStatus.st_gid) != 0 &&
      fchown(file.Number(), static_cast<uid_t>(-1), old.mStatus.st_gid) != 0) {
    errno = 0;
  }
  struct stat now {};
  if (fstat(file.Number(), &now) != 0) return;
  const bool hasGroup = now.st_gid == old.mStatus.st_gid;
  const bool hasOwner = now.st_uid == old.mStatus.st_uid;
  mode_t mode = NarrowMode(old);
  if (hasGroup && CopyACL(old.mFile, file)) {
    mode = old.mStatus.st_mode & (hasOwner ? kAll : kEverybody);
  }
  // Many network shares refuse this; the file then keeps the mode that it was made with.
  if (fchmod(file.Number(), mode) != 0) errno = 0;
}

}  // namespace zelstoryhost
