include(${CMAKE_CURRENT_LIST_DIR}/headers.cmake)
kzoci_headers(nlohmann_json::nlohmann_json nlohmann)
