#pragma once

/// Marks what libVela.System.Nm.so exports. Everything else in the library is hidden.
#define VELA_NM_API __attribute__((visibility("default")))
