# Reference lists: their editing logic and item models, custom-field names, default marks.
foreach(name tst_referencelisteditor tst_referencelistmodel tst_customfields)
    corvanta_add_test(${name} SOURCES ${name}.cpp referencelisttestsupport.h LIBRARIES corvanta_documents)
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/model)
endforeach()
