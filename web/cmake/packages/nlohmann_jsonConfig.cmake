file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/headers)
file(CREATE_LINK /usr/include/nlohmann ${PROJECT_BINARY_DIR}/headers/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
target_include_directories(nlohmann_json::nlohmann_json SYSTEM INTERFACE
                           ${PROJECT_BINARY_DIR}/headers)
