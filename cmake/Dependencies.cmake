# Every third-party dependency is found here once, so later work adds no set-up step.
find_package(PkgConfig REQUIRED)

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network PrintSupport OpenGL OpenGLWidgets Svg Test)

find_package(HDF5 REQUIRED COMPONENTS C)
add_library(zarvi::hdf5 INTERFACE IMPORTED)
target_include_directories(zarvi::hdf5 INTERFACE ${HDF5_C_INCLUDE_DIRS} ${HDF5_INCLUDE_DIRS})
target_link_libraries(zarvi::hdf5 INTERFACE ${HDF5_C_LIBRARIES} ${HDF5_LIBRARIES})
target_compile_definitions(zarvi::hdf5 INTERFACE ${HDF5_C_DEFINITIONS} ${HDF5_DEFINITIONS})

find_package(OpenCV 4 REQUIRED COMPONENTS core imgproc imgcodecs videoio)

find_package(Armadillo REQUIRED)
find_package(BLAS REQUIRED)
find_package(LAPACK REQUIRED)
find_library(SUPERLU_LIBRARY NAMES superlu REQUIRED)
add_library(zarvi::armadillo INTERFACE IMPORTED)
target_include_directories(zarvi::armadillo INTERFACE ${ARMADILLO_INCLUDE_DIRS})
target_link_libraries(zarvi::armadillo INTERFACE ${ARMADILLO_LIBRARIES} ${SUPERLU_LIBRARY} ${LAPACK_LIBRARIES} ${BLAS_LIBRARIES})

find_package(NLopt REQUIRED)

pkg_check_modules(FFMPEG REQUIRED IMPORTED_TARGET libavformat libavcodec libavutil libswscale)
find_package(TIFF REQUIRED)
find_package(ZLIB REQUIRED)
pkg_check_modules(XLSXWRITER REQUIRED IMPORTED_TARGET xlsxwriter)
find_package(QCustomPlotQt6 REQUIRED)

find_package(GTest REQUIRED)
find_package(benchmark REQUIRED)

find_program(H5DUMP_EXECUTABLE h5dump)
find_program(H5LS_EXECUTABLE h5ls)
# Packs ROI sets in the tests, so that the archive reader meets archives it did not write.
find_program(ZIP_EXECUTABLE zip)
