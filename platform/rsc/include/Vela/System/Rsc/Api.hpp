#pragma once

/// Marks what libVela.System.Rsc.so exports. Everything else in the library is hidden.
#define VELA_RSC_API __attribute__((visibility("default")))
