#include <filesystem>

#include "SoftwareFacts.h"
#include "support/TestSupport.h"

TEST(SoftwareReaderTest, PackagesAreReadFieldByField) {
    const auto packages = ParsePackages(
        "Package: zlib1g\nStatus: install ok installed\nArchitecture: amd64\nInstalled-Size: 168\nVersion: 1:1.2.13\n"
        "Description: compression library\n Version: of the text, not of the package\n\n"
        "Package: gone\nStatus: deinstall ok config-files\nArchitecture: all\n\n\n"
        "Broken\nStatus: install ok installed\n\n"
        "Package: odd\nStatus: installed\nInstalled-Size: much\nEssential: yes",
        "status");
    ASSERT_EQ(packages.size(), 3u);
    EXPECT_EQ(packages[0].name, "gone");
    EXPECT_EQ(*packages[0].status, eConfigFiles);
    EXPECT_FALSE(packages[0].version);
    EXPECT_EQ(packages[1].name, "odd");
    EXPECT_EQ(packages[1].status.absence, EAbsence::eNotSupported);
    EXPECT_EQ(packages[1].installedSize.absence, EAbsence::eNotSupported);
    EXPECT_TRUE(packages[1].essential);
    EXPECT_EQ(*packages[2].version, "1:1.2.13");
    EXPECT_EQ(*packages[2].installedSize, 168u * 1024);
    EXPECT_EQ(*packages[2].summary, "compression library");
}

TEST(SoftwareReaderTest, ModulesAreReadWithTheirUsers) {
    const auto modules = ParseModules(
        "virtio_net 61440 0 - Live 0x0000000000000000\nshort line\n"
        "failover 16384 2 net_failover,virtio_net, Live 0x0 (OE)\nkvm 999 x [permanent], Dying 0x0\n",
        "modules");
    ASSERT_EQ(modules.size(), 3u);
    EXPECT_EQ(modules[0].users, (std::vector<std::string>{"net_failover", "virtio_net"}));
    EXPECT_EQ(*modules[0].size, 16384u);
    EXPECT_EQ(modules[1].referenceCount.absence, EAbsence::eNotSupported);
    EXPECT_EQ(modules[1].state.absence, EAbsence::eNotSupported);
    EXPECT_TRUE(modules[1].users.empty());
    EXPECT_EQ(*modules[2].state, eLive);
}

TEST(SoftwareReaderTest, ServicesTellHowTheyAreStartedAndWhetherTheyRun) {
    const TempFolder root;
    const std::string units = "usr/lib/systemd/system/", etc = "etc/systemd/system/";
    root.Write(units + "ssh.service", "[Unit]\nDescription=Secure shell\n[Install]\nWantedBy=multi-user.target\n");
    root.Write(units + "cron.service", "[Unit]\nDescription = Runs at times\n\n[Install]\n");
    root.Write(units + "vsftpd.service", "[Install]\n");
    root.Write(units + "once.service", "[Unit]\n");
    root.Write(units + "my-getty@.service", "[Unit]\nDescription=Getty on %I, %p\n");
    root.Write(units + "udevd.service", "[Unit]\nDescription=Watches\n");
    std::filesystem::create_symlink("/dev/null", root.Path() + '/' + units + "old.service");
    root.Write(etc + "multi-user.target.wants/ssh.service", "");
    root.Write(etc + "getty.target.wants/my-getty@tty1.service", "");
    std::filesystem::create_symlink("/usr/lib/systemd/system/cron.service", root.Path() + '/' + etc + "times.service");
    root.Write("run/systemd/generator.late/lsb.service", "[Unit]\nDescription=LSB: of a script\n");
    root.Write("run/systemd/generator.late/multi-user.target.wants/lsb.service", "");
    const std::string slice = "sys/fs/cgroup/system.slice/";
    root.Write(slice + "ssh.service/cgroup.procs", "812\n");
    root.Write(slice + "udevd.service/cgroup.procs", "");
    root.Write(slice + "udevd.service/cgroup.events", "populated 1\nfrozen 0\n");
    root.Write(slice + "system-my\\x2dgetty.slice/my-getty@tty1.service/cgroup.procs", "813\n");
    const auto services = ReadServices(TSystemRoot(root.Path()));
    std::vector<std::tuple<std::string, uint16_t, std::string, bool>> found;
    for (const TService& service : services)
        found.emplace_back(service.name, *service.startMode, service.description.ValueOr(""), *service.running);
    EXPECT_THAT(found, ::testing::ElementsAre(std::tuple("cron.service", eEnabled, "Runs at times", false),
                                              std::tuple("lsb.service", eEnabled, "LSB: of a script", false),
                                              std::tuple("my-getty@tty1.service", eEnabled, "Getty on tty1, %p", true),
                                              std::tuple("old.service", eMasked, "", false),
                                              std::tuple("once.service", eStatic, "", false),
                                              std::tuple("ssh.service", eEnabled, "Secure shell", true),
                                              std::tuple("udevd.service", eStatic, "Watches", true),
                                              std::tuple("vsftpd.service", eDisabled, "", false)));
}
