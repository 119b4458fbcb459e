#include "display/gl_functions.h"

namespace {

template <class Function>
bool Load(const GlLoader& loader, const char* name, Function& function) {
    function = reinterpret_cast<Function>(loader(name));
    return function != nullptr;
}

bool LoadShaders(const GlLoader& loader, GL_FUNCTIONS& gl) {
    bool all = Load(loader, "glCreateProgram", gl.createProgram);
    all &= Load(loader, "glAttachShader", gl.attachShader);
    all &= Load(loader, "glLinkProgram", gl.linkProgram);
    all &= Load(loader, "glUseProgram", gl.useProgram);
    all &= Load(loader, "glCreateShader", gl.createShader);
    all &= Load(loader, "glShaderSource", gl.shaderSource);
    all &= Load(loader, "glCompileShader", gl.compileShader);
    all &= Load(loader, "glGetProgramInfoLog", gl.getProgramInfoLog);
    all &= Load(loader, "glGetShaderInfoLog", gl.getShaderInfoLog);
    all &= Load(loader, "glGetUniformLocation", gl.getUniformLocation);
    all &= Load(loader, "glUniform1i", gl.uniform1i);
    all &= Load(loader, "glUniform1f", gl.uniform1f);
    all &= Load(loader, "glUniform4f", gl.uniform4f);
    all &= Load(loader, "glUniformMatrix4fv", gl.uniformMatrix4fv);
    Load(loader, "glActiveTexture", gl.activeTexture);
    Load(loader, "glGetProgramiv", gl.getProgramiv);
    Load(loader, "glDeleteProgram", gl.deleteProgram);
    Load(loader, "glDeleteShader", gl.deleteShader);
    return all;
}

bool LoadBuffers(const GlLoader& loader, GL_FUNCTIONS& gl) {
    bool all = Load(loader, "glGenBuffers", gl.genBuffers);
    all &= Load(loader, "glBindBuffer", gl.bindBuffer);
    all &= Load(loader, "glBufferData", gl.bufferData);
    all &= Load(loader, "glDeleteBuffers", gl.deleteBuffers);
    return all;
}

} // namespace

GL_FUNCTIONS LoadGlFunctions(const GlLoader& loader) {
    GL_FUNCTIONS gl;
    if (!loader) {
        return gl;
    }
    if (!LoadShaders(loader, gl)) {
        gl.useProgram = nullptr;
    }
    if (!LoadBuffers(loader, gl)) {
        gl.genBuffers = nullptr;
        gl.bindBuffer = nullptr;
        gl.bufferData = nullptr;
        gl.deleteBuffers = nullptr;
    }
    return gl;
}
