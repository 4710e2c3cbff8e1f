// The function that the page provides to the module.
mergeInto(LibraryManager.library, {
  page_read: function(offset, to, count) { return Module['pageRead'](offset, to, count); },
});
