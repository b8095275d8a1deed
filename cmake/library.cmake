# The library: its objects, and what they are linked into.
#
#   kprcv_objects   every source but the loader's and the C library's calls; tests of hidden members link these
#   kprcv           libkprcvn0.so. Under the sanitizers, whose run-time the library must not depend on, the objects and
#                   the entries stand in for it.

add_library(kprcv_objects OBJECT
    detect/haar_apply.cpp
    detect/haar_init.cpp
    detect/integral.cpp
    detect/rect_std_dev.cpp
    detect/tilted_integral.cpp
    distance/chamfer.cpp
    distance/exact.cpp
    distance/inpaint.cpp
    distance/inpaint_init.cpp
    distance/marching.cpp
    feature/canny.cpp
    feature/canny_border.cpp
    feature/colour_gradient.cpp
    feature/edge_planes.cpp
    feature/eigenvalues.cpp
    feature/fast.cpp
    feature/harris.cpp
    feature/hough.cpp
    feature/hough_segments.cpp
    feature/line_suppression.cpp
    feature/peaks.cpp
    feature/structure_rows.cpp
    filter/column_pipeline.cpp
    filter/fixed.cpp
    filter/gaussian_border.cpp
    filter/gaussian_init.cpp
    filter/gaussian_large.cpp
    filter/row_pipeline.cpp
    filter/sobel.cpp
    frame/cache.cpp
    frame/version.cpp
    geometry/copy_subpix.cpp
    geometry/copy_subpix_intersect.cpp
    geometry/sample_line.cpp
    geometry/undistort.cpp
    morph/bits.cpp
    morph/call.cpp
    morph/compound.cpp
    morph/compound_bits.cpp
    morph/compound_large.cpp
    morph/compound_stages.cpp
    morph/extremum_bits.cpp
    morph/extremum_bytes.cpp
    morph/extremum_floats.cpp
    morph/extremum_words.cpp
    morph/gray.cpp
    morph/reconstruct.cpp
    morph/structure.cpp
    morph/structuring.cpp
    morph/structuring_large.cpp
    morph/tap_walk.cpp
    motion/mixture.cpp
    motion/motion_history.cpp
    motion/optical_flow.cpp
    primitives/arithmetic.cpp
    primitives/border.cpp
    primitives/copy.cpp
    primitives/extrema.cpp
    primitives/math.cpp
    primitives/set.cpp
    primitives/sort.cpp
    primitives/threshold.cpp
    primitives/vector_math.cpp
    pyramid/layer_state.cpp
    pyramid/layers.cpp
    pyramid/levels.cpp
    segment/bounds.cpp
    segment/colour_steps.cpp
    segment/flood_fill.cpp
    segment/flood_gradient.cpp
    segment/label_markers.cpp
    segment/speckles.cpp
    segment/watershed.cpp
    stats/abs_diff.cpp
    stats/accumulate.cpp
    stats/mean.cpp
    stats/min_max.cpp
    stats/norm.cpp
    stats/norm_diff.cpp
    stats/norm_rel.cpp
)
target_include_directories(kprcv_objects PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
set_target_properties(kprcv_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)

add_library(kprcv_build_flags INTERFACE)
target_compile_options(kprcv_build_flags INTERFACE
    -Wall -Wextra -Wshadow -Wconversion -Wno-sign-conversion $<$<BOOL:${KPRCV_WERROR}>:-Werror>
    -march=${KPRCV_PROCESSOR}
    # vectors of 64 bytes: whole, or in two halves, which are passed on in registers or not at all
    $<IF:$<STREQUAL:${KPRCV_PROCESSOR},x86-64-v4>,-mprefer-vector-width=512,-Wno-psabi;-Wno-ignored-attributes>
    -ffp-contract=off              # a fused step is an explicit fma
    -fcf-protection=full -fstack-protector-strong -fvisibility=hidden -fno-plt
    $<$<COMPILE_LANGUAGE:CXX>:-ffreestanding -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-math-errno>
    # a copying loop must not become a call to memcpy
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-fno-tree-loop-distribute-patterns>)
target_link_libraries(kprcv_objects PRIVATE kprcv_build_flags)

if(KPRCV_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
    target_compile_options(kprcv_objects PRIVATE ${sanitizers} -fno-omit-frame-pointer)
    # Filters leave out what is checked at every vector that is passed on, in minutes of compiling: scopes of
    # temporaries, and pointers that are null or odd, which the address sanitizer or the processor stops at.
    get_target_property(sources kprcv_objects SOURCES)
    list(FILTER sources INCLUDE REGEX "^filter/")
    set_source_files_properties(${sources} PROPERTIES
        COMPILE_OPTIONS "-fno-sanitize-address-use-after-scope;-fno-sanitize=null,object-size,alignment")
    target_link_options(kprcv_objects INTERFACE ${sanitizers})
    add_library(kprcv INTERFACE)
    target_sources(kprcv INTERFACE ${PROJECT_SOURCE_DIR}/frame/entries.S $<TARGET_OBJECTS:kprcv_objects>)
    target_include_directories(kprcv INTERFACE ${PROJECT_SOURCE_DIR})
    target_link_options(kprcv INTERFACE ${sanitizers})
else()
    add_library(kprcv SHARED frame/entries.S frame/memory.cpp frame/start.cpp)
    target_link_libraries(kprcv PRIVATE kprcv_build_flags kprcv_objects -nostdlib c)
    target_link_options(kprcv PRIVATE
        -nostdlib
        LINKER:--version-script=${PROJECT_SOURCE_DIR}/frame/exports.map
        LINKER:-z,now,-z,relro,-z,noexecstack,-z,defs,-z,ibt,-z,shstk
        LINKER:-z,${KPRCV_PROCESSOR}  # a lesser processor gets the loader's clear message
        LINKER:--as-needed,--build-id)
    set_target_properties(kprcv PROPERTIES
        OUTPUT_NAME kprcvn0
        LINK_DEPENDS ${PROJECT_SOURCE_DIR}/frame/exports.map)
endif()
# Calls to these are made after link-time optimisation has looked for callers.
set_property(SOURCE ${PROJECT_SOURCE_DIR}/frame/memory.cpp PROPERTY COMPILE_OPTIONS -fno-lto)
set_property(SOURCE ${PROJECT_SOURCE_DIR}/frame/entries.S PROPERTY OBJECT_DEPENDS ${PROJECT_SOURCE_DIR}/frame/exports.inc)
target_include_directories(kprcv INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
add_library(kprcv::kprcv ALIAS kprcv)
