# Texture codecs: the Pillow interoperability test runs Debian's Python.
target_compile_definitions(texture_interop_test PRIVATE
  ZVP_TEXTURE_PILLOW_SCRIPT="${CMAKE_CURRENT_SOURCE_DIR}/texture_pillow.py")
