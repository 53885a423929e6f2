#pragma once

#include <QString>

// Where the tests find the project's trees.
namespace zelmor::testsupport {

// The source tree: env ZELMOR_SOURCE_DIR (set by CTest), else the tree this
// helper library was configured from.
QString sourceDir();

// The build tree: env ZELMOR_BINARY_DIR (set by CTest), else the build tree
// this helper library was configured in. Plugins are in <binaryDir>/plugins,
// test executables in <binaryDir>/tests.
QString binaryDir();

} // namespace zelmor::testsupport
