// The remote objects of the instrument client library, and the factory that creates them.
#pragma once

#include <ace/SString.h>       // IWYU pragma: export
#include <ace/Singleton.h>     // IWYU pragma: export
#include <ace/Thread_Mutex.h>  // IWYU pragma: export
#include <ace/Versioned_Namespace.h>

// Named only: whoever marshals includes ace/CDR_Stream.h.
ACE_BEGIN_VERSIONED_NAMESPACE_DECL
class ACE_InputCDR;
class ACE_OutputCDR;
ACE_END_VERSIONED_NAMESPACE_DECL

#pragma GCC visibility push(default)

/// Something that can make a copy of itself without its maker knowing the class.
class Clone {
 public:
  virtual ~Clone();

  /// Returns a copy that the caller owns.
  virtual Clone* clone() const = 0;
};

/// Something that crosses the connection as a CDR stream.
class Serializable {
 public:
  virtual ~Serializable();

  /// The name under which the class is known on both ends.
  virtual const char* className() const = 0;
  /// Writes the contents; false when the stream refuses them.
  virtual bool save(ACE_OutputCDR& aStream) const = 0;
  /// Replaces the contents; false, and contents unchanged, when the stream does not hold them.
  virtual bool load(ACE_InputCDR& aStream) = 0;
};

class RemoteObject : public Clone, public Serializable {
 public:
  ~RemoteObject() override;
};

/// One text of the instrument: site information, instrument name, application, BOOTP name.
class SiteInfoTag : public RemoteObject {
 public:
  SiteInfoTag();
  ~SiteInfoTag() override;

  const ACE_CString& getTagName() const;

  Clone* clone() const override;
  const char* className() const override;
  bool save(ACE_OutputCDR& aStream) const override;
  bool load(ACE_InputCDR& aStream) override;

 private:
  ACE_CString mTagName;
};

/// What the columns of the four analytical channels are.
class ColumnDescriptions : public RemoteObject {
 public:
  ColumnDescriptions();
  ~ColumnDescriptions() override;

  const ACE_CString& getDescriptionColumn1() const;
  const ACE_CString& getDescriptionColumn2() const;
  const ACE_CString& getDescriptionColumn3() const;
  const ACE_CString& getDescriptionColumn4() const;

  Clone* clone() const override;
  const char* className() const override;
  bool save(ACE_OutputCDR& aStream) const override;
  bool load(ACE_InputCDR& aStream) override;

 private:
  ACE_CString mDescriptions[4];
};

/// Keeps a prototype of each class that the library may have to create. Reached only through its
/// singleton, which program and libraries share.
class CloneFactory {
 public:
  CloneFactory();
  ~CloneFactory();
  CloneFactory(const CloneFactory&) = delete;
  CloneFactory& operator=(const CloneFactory&) = delete;

  /// Keeps a copy of `aPrototype`, in place of an earlier one of the same class.
  void registerObject(const Clone& aPrototype);

 private:
  friend class CloneFactoryAccess;  // the library's way to its prototypes
  struct Prototypes;
  Prototypes* mPrototypes;
};

// Program and libraries each instantiate the singleton. Only while these symbols are visible does
// the loader let all of them share one: hidden, a prototype registered by the program would never
// be seen by the library.
extern template class __attribute__((visibility("default")))
ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

#pragma GCC visibility pop
