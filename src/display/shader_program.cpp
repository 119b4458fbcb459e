#include "display/shader_program.h"

#include <algorithm>
#include <cctype>

namespace {

// Some drivers return only a log, and in it the word.
bool LogTellsOfError(std::string log) {
    std::transform(log.begin(), log.end(), log.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return log.find("ERROR") != std::string::npos;
}

template <class GetLog>
std::string ReadLog(GetLog getLog, GLuint name) {
    constexpr GLsizei kMost = 4096;
    std::string log(kMost, '\0');
    GLsizei length = 0;
    getLog(name, kMost, &length, log.data());
    log.resize(static_cast<size_t>(std::clamp<GLsizei>(length, 0, kMost)));
    return log;
}

GLuint CompileShader(const GL_FUNCTIONS& gl, GLenum kind, const std::string& text,
                     const std::string& what, std::string& error) {
    const GLuint shader = gl.createShader(kind);
    const GLchar* const source = text.c_str();
    gl.shaderSource(shader, 1, &source, nullptr);
    gl.compileShader(shader);
    const std::string log = ReadLog(gl.getShaderInfoLog, shader);
    if (LogTellsOfError(log)) {
        error = what + " cannot be compiled: " + log;
    }
    return shader;
}

} // namespace

GLuint CompileProgram(const GL_FUNCTIONS& gl, const std::string& vertexText,
                      const std::string& fragmentText, const std::string& what,
                      std::string& error) {
    error.clear();
    const GLuint vertex = CompileShader(gl, GL_VERTEX_SHADER, vertexText, what, error);
    const GLuint fragment = CompileShader(gl, GL_FRAGMENT_SHADER, fragmentText, what, error);
    const GLuint program = gl.createProgram();
    gl.attachShader(program, vertex);
    gl.attachShader(program, fragment);
    gl.linkProgram(program);
    if (gl.deleteShader != nullptr) { // they live on with the program
        gl.deleteShader(vertex);
        gl.deleteShader(fragment);
    }
    if (error.empty()) {
        const std::string log = ReadLog(gl.getProgramInfoLog, program);
        GLint linked = GL_TRUE;
        if (gl.getProgramiv != nullptr) {
            gl.getProgramiv(program, GL_LINK_STATUS, &linked);
        }
        if (linked != GL_TRUE || LogTellsOfError(log)) {
            error = what + " cannot be linked: " + log;
        }
    }
    if (error.empty()) {
        return program;
    }
    if (gl.deleteProgram != nullptr) {
        gl.deleteProgram(program);
    }
    return 0;
}
