extern "C" const char* nameOfFrontEnd() { return FRONT_END; }
