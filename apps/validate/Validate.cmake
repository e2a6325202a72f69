# sorvane-validate, included from apps/CMakeLists.txt: the checks live in
# apps/validate, one file per area; `sorvane validate` starts this program.

# The counting hooks, also used by the LV2 edition's tests. They must be what
# a plug-in loaded later binds to: whatever links them exports exactly them.
add_library(sorvane_realtime_hooks OBJECT ${CMAKE_CURRENT_LIST_DIR}/RealtimeHooks.cpp)
target_include_directories(sorvane_realtime_hooks INTERFACE ${CMAKE_CURRENT_LIST_DIR})
target_link_options(sorvane_realtime_hooks INTERFACE -Wl,--dynamic-list=${CMAKE_CURRENT_LIST_DIR}/hooks.list)
set_property(TARGET sorvane_realtime_hooks PROPERTY INTERFACE_LINK_DEPENDS ${CMAKE_CURRENT_LIST_DIR}/hooks.list)
target_link_libraries(sorvane_realtime_hooks INTERFACE ${CMAKE_DL_LIBS})

add_executable(sorvane-validate
  ${CMAKE_CURRENT_LIST_DIR}/Main.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Runner.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Harness.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ExportedSymbols.cpp
  ${CMAKE_CURRENT_LIST_DIR}/LifecycleChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/AudioChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/TimingChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ParameterChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/StateChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DispatcherChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ThreadChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/EditorChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/DisplayKeeper.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RealtimeChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/RecoveryChecks.cpp
  ${CMAKE_CURRENT_LIST_DIR}/ZipperChecks.cpp)
target_include_directories(sorvane-validate PRIVATE ${CMAKE_CURRENT_LIST_DIR}/..)
find_package(Threads REQUIRED)
# The editor checks read the editor's window back from the X server.
pkg_check_modules(VALIDATE_X11 REQUIRED IMPORTED_TARGET x11)
target_link_libraries(sorvane-validate PRIVATE sorvane_realtime_hooks sorvane_render sorvane_host sorvane_host_editor CLI11::CLI11
  PkgConfig::VALIDATE_X11 Threads::Threads)

target_sources(sorvane PRIVATE ${CMAKE_CURRENT_LIST_DIR}/../ValidateCommand.cpp)
add_dependencies(sorvane sorvane-validate)
