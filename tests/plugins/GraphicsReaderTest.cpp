#include <gtest/gtest.h>

#include <filesystem>

#include "GraphicsFacts.h"
#include "support/TestSupport.h"

// Whole EDIDs are compared with edid-decode, and stand in the fixtures.
TEST(GraphicsReaderTest, FilesOfTheKernelAreUnderstoodOrRefused) {
    EXPECT_EQ(ConnectorKind("HDMI-A-1"), 11);
    EXPECT_EQ(ConnectorKind("DP-10"), 10);
    EXPECT_EQ(ConnectorKind("Writeback-1"), 18);
    EXPECT_EQ(ConnectorKind("HDMI"), std::nullopt);
    const std::string memory = "0x1000 0x1fff 0x2200\n", io = "0x0 0xffffff 0x101\n";
    EXPECT_EQ(LargestAperture(io + memory + "0x0 0xff 0x2200\n"), 0x1000u);
    EXPECT_EQ(LargestAperture("0x2000 0x1000 0x2200\n0x0 0xffffffffffffffff 0x2200\n0x1 x 0x2200\n1 2\n"),
              std::nullopt);
    EXPECT_EQ(MakerName("XMPX\tno\nXMP\tExMon\nXMP\tlate\n", "XMP"), "ExMon");
    EXPECT_EQ(MakerName("XMP", "XMP"), std::nullopt);
    EXPECT_EQ(MakerName("\tno\n", ""), std::nullopt);
}

TEST(GraphicsReaderTest, CardOnTopOfAFunctionIsNoSecondController) {
    const TempFolder root;
    const std::string function = "devices/pci0000:00/0000:00:09.0", card = function + "/virtio0/drm/card0";
    root.Write("sys/" + function + "/uevent", "DRIVER=virtio-pci\nPCI_CLASS=30000\nPCI_ID=1AF4:1050\n");
    root.Write("sys/" + card + "/uevent", "DEVNAME=dri/card0\n");
    root.Write("sys/bus/pci/devices/none", "");
    root.Write("sys/class/drm/version", "drm\n");
    std::filesystem::create_symlink("../../../" + function, root.Path() + "/sys/bus/pci/devices/0000:00:09.0");
    std::filesystem::create_symlink("../../" + card, root.Path() + "/sys/class/drm/card0");
    const TGraphicsFacts facts = ReadGraphics(TSystemRoot(root.Path()));
    ASSERT_EQ(facts.controllers.size(), 1u);
    EXPECT_EQ(facts.controllers[0].id, "virtio0");
    EXPECT_EQ(facts.controllers[0].busDevice.pciAddress, "0000:00:09.0");
}

TEST(GraphicsReaderTest, OnlyWhatFitsIsTakenAsASize) {
    const TGraphicsFacts facts = ReadGraphics(TSystemRoot(MACHINES "/laptop"));
    ASSERT_EQ(facts.monitors.size(), 2u);
    std::string bytes = *TSystemRoot(MACHINES "/laptop").ReadFile(facts.monitors[0].edid.source);
    EXPECT_EQ(ParseEdid(bytes)->width, 1193u);
    bytes[54 + 12] = 16;  // millimetres that are a shape
    EXPECT_EQ(ParseEdid(bytes)->width, 1190u);
    EXPECT_EQ(ParseEdid(bytes)->state, EEdidState::eWrongChecksum);
    bytes[21] = 0;  // centimetres that are a shape
    EXPECT_EQ(ParseEdid(bytes)->width, std::nullopt);
    EXPECT_EQ(ParseEdid(bytes.substr(0, 300))->state, EEdidState::eTruncated);
    EXPECT_FALSE(ParseEdid(bytes.substr(0, 127)));
}
