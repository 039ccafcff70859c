"""check_install.py PREFIX SOURCES BUILD

Checks what is installed under PREFIX: that it looks for libraries in no other place, works when it is moved, and serves
other projects by CMake and pkg-config, and that SOURCES can be a part of another project.
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

prefix, sources, build = sys.argv[1:]

PLUGIN = """
set(CMAKE_DISABLE_FIND_PACKAGE_Boost ON)
find_package(kyrcore 1 REQUIRED COMPONENTS plugin)
kyrcore_add_plugin(one SOURCES one.c DOCUMENT one.properties.xml)
"""
STATIC = """
find_package(kyrcore 1 REQUIRED)
add_executable(reader reader.cpp)
target_link_libraries(reader PRIVATE kyrcore::kyrcore_static)
"""
PART = f"""
foreach(package CLI11 GTest PkgConfig RapidJSON)
  set(CMAKE_DISABLE_FIND_PACKAGE_${{package}} ON)
endforeach()
add_subdirectory({sources} part)
get_target_property(options kyrcore_options INTERFACE_COMPILE_OPTIONS)
if("${{options}}" MATCHES "-Werror" OR TARGET kyr OR TARGET usb_plugin OR TARGET test_support OR CMAKE_BUILD_TYPE)
  message(FATAL_ERROR "the part does more than a part should")
endif()
"""
FILES = {
    "one.c": "#include <kyr/kyrPlugin.h>\nvoid *handle;\n",
    "one.properties.xml": "<CIM/>\n",
    "reader.cpp": "#include <kyr/TContainer.h>\nint main() { return TContainer().GetRootClass() == nullptr; }\n",
}


def run(*command, **environment):
    result = subprocess.run(command, env={**os.environ, **environment}, text=True, check=False, stdin=subprocess.DEVNULL,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if result.returncode != 0:
        sys.exit(f"{' '.join(command)}: status {result.returncode}:\n{result.stdout}")
    return result.stdout


def programs(folder):
    for at, _, names in os.walk(folder):
        for path in (os.path.join(at, name) for name in names):
            with open(path, "rb") as file:
                if file.read(4) == b"\x7fELF" and not path.endswith(".o"):
                    yield path


def search_paths(program):
    found = re.search(r"R(?:UN)?PATH.*\[(.*)\]", run("readelf", "-d", program))
    return found[1].split(":") if found else []


def check_search_paths():
    for program in programs(prefix):
        wrong = [path for path in search_paths(program) if not path.startswith("$ORIGIN/")]
        assert not wrong, f"{program} looks for libraries in {wrong}"
    for program in [f"{build}/bin/kyr", *programs(f"{build}/lib"), *programs(f"{build}/plugins")]:
        assert "" not in search_paths(program), f"{program} looks for libraries in the current folder"


def check_moved(folder):
    moved = shutil.copytree(prefix, f"{folder}/moved")
    os.mkdir(f"{moved}/plugins")
    told = run(f"{moved}/bin/kyr", "get", "MOLTA_OperatingSystem.KernelRelease", "--raw")
    assert told == f"{os.uname().release}\n", told
    flags = run("pkg-config", f"--define-variable=prefix={moved}", "--cflags", "--libs", "kyrcore",
                PKG_CONFIG_PATH=pkg_config_folder()).split()
    for option, file in (("-I", "kyr/kyrPlugin.h"), ("-L", "libkyrcore.so")):
        folder = next(flag[2:] for flag in flags if flag.startswith(option))
        assert folder.startswith(moved) and os.path.exists(f"{folder}/{file}"), flags


def check_project(folder, text, builds=True):
    project = tempfile.mkdtemp(dir=folder)
    for name, content in {**FILES, "CMakeLists.txt": f"cmake_minimum_required(VERSION 3.22)\nproject(other)\n{text}"}.items():
        with open(os.path.join(project, name), "w", encoding="utf-8") as file:
            file.write(content)
    run("cmake", "-G", "Ninja", "-S", project, "-B", f"{project}/build", f"-DCMAKE_PREFIX_PATH={prefix}")
    if builds:
        run("cmake", "--build", f"{project}/build")
    return project


def check_part(project):
    for options, installed in (([], False), (["-DKYRCORE_INSTALL=ON"], True)):
        run("cmake", "-S", project, "-B", f"{project}/build", *options)
        run("cmake", "--install", f"{project}/build", "--prefix", f"{project}/prefix", "--component", "schema")
        assert os.path.isdir(f"{project}/prefix") == installed, f"installed of a part with {options}"


def check_pkg_config():
    for variable, file in (("pluginsdir", "usb/libusb.pi.so"), ("schemadir", "kyrcore.xml")):
        folder = run("pkg-config", f"--variable={variable}", "kyrcore", PKG_CONFIG_PATH=pkg_config_folder()).strip()
        assert os.path.isfile(f"{folder}/{file}"), f"{variable} is {folder}, where no {file} is"


def pkg_config_folder():
    return next(at for at, _, names in os.walk(prefix) if "kyrcore.pc" in names)


def check_library_alone(folder):
    unwanted = [f"-DCMAKE_DISABLE_FIND_PACKAGE_{package}=ON" for package in ("CLI11", "GTest", "PkgConfig", "RapidJSON")]
    run("cmake", "-G", "Ninja", "-S", sources, "-B", folder, "-DKYRCORE_HOST=OFF", "-DKYRCORE_PLUGINS=OFF", *unwanted)


with tempfile.TemporaryDirectory() as temporary:
    check_search_paths()
    check_moved(temporary)
    check_pkg_config()
    check_project(temporary, PLUGIN)
    run(f"{check_project(temporary, STATIC)}/build/reader")
    check_part(check_project(temporary, PART, builds=False))
    check_library_alone(f"{temporary}/library")
