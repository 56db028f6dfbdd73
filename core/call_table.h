// A table of platform steps that tests can replace for a while, to see the
// portable front cope with failures the system rarely gives. Each seam that
// needs one declares its struct of function pointers and SystemCalls(), the
// platform's own steps, and takes its current table and override from here.
#ifndef QUILTOOL_CORE_CALL_TABLE_H
#define QUILTOOL_CORE_CALL_TABLE_H

namespace qt {

template <class Calls, const Calls& (*System)()>
struct CallTable {
  // The table in use, the system's until a test changes it.
  static Calls& Current() {
    static Calls calls = System();
    return calls;
  }

  // For tests: changes made through the object last as long as it does.
  class Override {
   public:
    Override() : saved_(Current()) {}
    ~Override() { Current() = saved_; }
    Override(const Override&) = delete;
    Override& operator=(const Override&) = delete;
    Calls* operator->() { return &Current(); }
    Calls* get() { return &Current(); }

   private:
    Calls saved_;
  };
};

}  // namespace qt

#endif
