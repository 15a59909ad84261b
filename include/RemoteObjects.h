// The remote objects of the instrument client library, and the factory that creates them.
#pragma once

#include <ace/SString.h>       // IWYU pragma: export
#include <ace/Singleton.h>     // IWYU pragma: export
#include <ace/Thread_Mutex.h>  // IWYU pragma: export
#include <ace/Versioned_Namespace.h>

// Only declared: code that marshals includes ace/CDR_Stream.h.
ACE_BEGIN_VERSIONED_NAMESPACE_DECL
class ACE_InputCDR;
class ACE_OutputCDR;
ACE_END_VERSIONED_NAMESPACE_DECL

#pragma GCC visibility push(default)

/// An object that can be copied without the caller knowing its class.
class Clone {
 public:
  virtual ~Clone();

  /// Returns a copy that the caller owns.
  virtual Clone* clone() const = 0;
};

/// An object sent over the connection as a CDR stream.
class Serializable {
 public:
  virtual ~Serializable();

  /// The name of the class on both ends.
  virtual const char* className() const = 0;
  /// Writes the contents; false if the stream rejects them.
  virtual bool save(ACE_OutputCDR& aStream) const = 0;
  /// Replaces the contents; false, with the contents unchanged, if the stream does not hold them.
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

/// Descriptions of the columns of the four analytical channels.
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

/// Keeps a prototype of each class that the library may have to create. Accessible only through its
/// singleton, which the program and the libraries share.
class CloneFactory {
 public:
  CloneFactory();
  ~CloneFactory();
  CloneFactory(const CloneFactory&) = delete;
  CloneFactory& operator=(const CloneFactory&) = delete;

  /// Keeps a copy of `aPrototype`, replacing any earlier one of the same class.
  void registerObject(const Clone& aPrototype);

 private:
  friend class CloneFactoryAccess;  // gives the library access to its prototypes
  struct Prototypes;
  Prototypes* mPrototypes;
};

// The program and the libraries each instantiate the singleton. The loader makes them share one
// only if these symbols are visible: if they were hidden, the library would never see a prototype
// that the program registers.
extern template class __attribute__((visibility("default")))
ACE_Singleton<CloneFactory, ACE_Thread_Mutex>;

#pragma GCC visibility pop
