#include "DataPlugin.h"
#include "StorageReports.h"

namespace {

// Sets the property to one number of the file system's space.
void AddSpace(const TFact<TSpace>& space, uint64_t TSpace::*number, const char* property, TInstanceReport& report) {
    report.Add(property, space.Map([number](const TSpace& all) { return std::optional(all.*number); }));
}

// A file system of size 0, such as an unlimited tmpfs, has no space to report. A zfs data set shares the space of its
// pool, so that it has no size of its own.
void AddSpaces(const TFileSystem& fileSystem, TInstanceReport& report) {
    const TFact<TSpace>& space = fileSystem.space;
    if (!space || space->size > 0) {
        if (fileSystem.type.ValueOr("") != "zfs") AddSpace(space, &TSpace::size, "FileSystemSize", report);
        AddSpace(space, &TSpace::used, "UsedSpace", report);
        AddSpace(space, &TSpace::available, "AvailableSpace", report);
    }
    if (space && space->inodes == 0) return;
    AddSpace(space, &TSpace::inodes, "Inodes", report);
    AddSpace(space, &TSpace::freeInodes, "FreeInodes", report);
}

kyrStatusCode ReportFileSystem(kyrIOHandle handle, const TFileSystem& fileSystem) {
    TInstanceReport report(handle, ScopedPath(kFileSystem, fileSystem.name));
    report.Set("Caption", fileSystem.label.ValueOr(fileSystem.name));
    report.Add("FileSystemType", fileSystem.type);
    report.Add("FileSystemVersion", fileSystem.version);
    report.Add("Label", fileSystem.label);
    report.Add("UUID", fileSystem.uuid);
    report.Set("StorageKind", static_cast<uint16_t>(fileSystem.kind));
    AddSpaces(fileSystem, report);
    return report.Finish();
}

kyrStatusCode ReportMount(kyrIOHandle handle, const TMount& mount, const std::string& source) {
    TInstanceReport report(handle, ScopedPath(kMount, mount.name));
    const auto add = [&](const char* property, auto value) {
        report.Add(property, TFact<decltype(value)>::Of(value, source));
    };
    report.Set("Caption", mount.source.empty() ? mount.point : mount.source + " on " + mount.point);
    add("MountPoint", mount.point);
    add("Source", mount.source);
    add("Root", mount.root);
    add("FileSystemType", mount.type);
    add("Options", mount.options);
    add("ReadOnly", mount.readOnly);
    add("Covered", mount.covered);
    return report.Finish();
}

}  // namespace

kyrStatusCode ReportFileSystems(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(handle, storage.fileSystems, ReportFileSystem);
}

kyrStatusCode ReportMounts(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.mounts.ValueOr({}),
                      [&](const TMount& mount) { return ReportMount(handle, mount, storage.mounts.source); });
}

kyrStatusCode ReportHostedFileSystems(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.fileSystems, [&](const TFileSystem& fileSystem) {
        return ReportSystemDevice(handle, kHostedFileSystem, ScopedPath(kFileSystem, fileSystem.name));
    });
}

kyrStatusCode ReportMountAssociations(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.mounts.ValueOr({}), [&](const TMount& mount) {
        if (mount.fileSystem.empty()) return kyrStatusOK;
        return ReportAssociation(handle, kMounted, "Antecedent", ScopedPath(kFileSystem, mount.fileSystem), "Dependent",
                                 ScopedPath(kMount, mount.name));
    });
}
