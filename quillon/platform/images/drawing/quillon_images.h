#pragma once
/* What libquillon_images.so offers. Plain C, since it is looked up by name when the first picture
 * is drawn: no class, allocator or exception crosses this line. */

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Raised with every change of this file. Both sides come out of one build, but an older library may
 * have been left behind where a newer one was installed. */
#define QUILLON_IMAGES_VERSION 1u

enum { QUILLON_PNG = 0, QUILLON_JPEG = 1, QUILLON_SVG = 2 };

typedef struct QuillonDrawing {
  /* The encoded picture. Its header has been checked: its size is within the limits, and an SVG is
   * plain shapes. */
  const uint8_t* bytes;
  size_t size;
  int32_t format;
  /* What the header says, in pixels. */
  double sourceWidth, sourceHeight;
  /* What to make of it: pixels, QUILLON_PNG or QUILLON_JPEG, and for JPEG 0 to 100. */
  uint32_t width, height;
  int32_t encoding;
  int32_t quality;
  /* Called before (after == 0) and after the picture is drawn, with all pixels of the result: rows
   * without gaps, ARGB of 32 bits in the machine's order, colours multiplied by alpha. May be null.
   * Nonzero, or the drawing fails. */
  int (*pass)(void* context, int after, uint32_t* pixels, uint32_t width, uint32_t height);
  /* Takes the encoded result, piece by piece. Nonzero, or the drawing fails. */
  int (*take)(void* context, const uint8_t* bytes, size_t size);
  void* context;
} QuillonDrawing;

/* The functions under their names "quillon_images_version" and "quillon_images_draw". Any thread.
 */
typedef uint32_t (*QuillonImagesVersion)(void);
/* Nonzero when the whole result was taken. Otherwise `fault` holds why, a text of at most
 * `faultSize` bytes with its zero, without anything of the picture's own text. */
typedef int (*QuillonImagesDraw)(const QuillonDrawing* drawing, char* fault, size_t faultSize);

#ifdef __cplusplus
}
#endif
